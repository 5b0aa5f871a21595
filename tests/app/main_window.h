#pragma once

// The main window over sixteen cameras, and its panel's controls under a hand.

#include "app/marvolen_dlg.h"
#include "tests/app/cameras.h"
#include "tests/support/event_loop.h"

#include <QImage>
#include <QLabel>
#include <QPushButton>

#include <memory>
#include <set>

namespace marvolen::test {

class MainWindow : public Cameras {
protected:
    void Open() {
        window = std::make_unique<CMarvolenDlg>();
        window->CreateModeless();
    }

    std::uint32_t Status(int k) { return window->Pane(k).GetStatus(); }
    bool IsConnected(int k) { return (Status(k) & PANE_CONNECTED) != 0; }
    bool IsRecording(int k) { return (Status(k) & PANE_RECORDING) != 0; }

    // Connected, and the pane shows another picture than it did.
    void ExpectLive(int k) {
        EXPECT_TRUE(WaitUntil([&] { return IsConnected(k); })) << "channel " << k;
        const QImage before = VideoArea(k);
        EXPECT_TRUE(WaitUntil([&] {
            const QImage now = VideoArea(k);
            return now != before && now.pixelColor(now.rect().center()) != QColor(Qt::black);
        })) << "channel "
            << k;
    }

    QImage VideoArea(int k) {
        VideoPane& pane = window->Pane(k);
        return pane.grab(QRect(2, 23, pane.width() - 4, pane.height() - 25)).toImage();
    }

    QWidget* Control(int id) { return window->ControlPanel().GetDlgItem(id); }
    QString Text(int id) { return window->ControlPanel().GetDlgItem<QPushButton>(id)->text(); }
    QString PageText(int id) { return window->ControlPanel().GetDlgItem<QLabel>(id)->text(); }

    // Queued commands have been carried out when this returns. At a place of the control's: a check
    // box is wider than what can be clicked.
    void Click(int id) {
        QTest::mouseClick(Control(id), Qt::LeftButton, Qt::NoModifier,
                          QPoint(8, Control(id)->height() / 2));
        QCoreApplication::processEvents();
    }

    std::set<int> VisiblePanes() {
        std::set<int> visible;
        for (int k = 0; k < kChannelCount; ++k) {
            if (window->Pane(k).isVisible()) visible.insert(k);
        }
        return visible;
    }

    std::unique_ptr<CMarvolenDlg> window;
};

}  // namespace marvolen::test

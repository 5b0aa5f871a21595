#pragma once

// The main window over sixteen cameras, and its panel's controls under a hand.

#include "app/marvolen_dlg.h"
#include "res/resource_ids.h"
#include "tests/app/cameras.h"
#include "tests/support/event_loop.h"

#include <QAbstractButton>
#include <QImage>
#include <QLabel>

#include <chrono>
#include <memory>
#include <set>
#include <utility>

namespace marvolen::test {

class MainWindow : public Cameras, public QObject {
protected:
    MainWindow() { QCoreApplication::instance()->installEventFilter(this); }

    void Open() {
        window = std::make_unique<CMarvolenDlg>();
        window->CreateModeless();
    }

    // Lets the running timers of this period tick now, as the toolkit would.
    void Tick(std::chrono::milliseconds period) {
        window->PostMessage(WM_POPUPPANE, static_cast<WPARAM>(-1), 0);
        QCoreApplication::processEvents();  // shows eventFilter whose timers the window's are
        for (QObject* receiver : std::exchange(receivers, {})) {
            for (const auto& timer :
                 QAbstractEventDispatcher::instance()->registeredTimers(receiver)) {
                QTimerEvent tick(timer.timerId);
                if (period.count() == timer.interval) QCoreApplication::sendEvent(receiver, &tick);
            }
        }
    }

    bool Has(int k, std::uint32_t status) {
        return (window->Pane(k).GetStatus() & status) == status;
    }
    template <typename Predicate>
    static std::set<int> PanesThat(Predicate predicate) {
        std::set<int> panes;
        for (int k = 0; k < kChannelCount; ++k) {
            if (predicate(k)) panes.insert(k);
        }
        return panes;
    }
    std::set<int> Recording() {
        return PanesThat([this](int k) { return Has(k, PANE_RECORDING); });
    }
    std::set<int> Visible() {
        return PanesThat([this](int k) { return window->Pane(k).isVisible(); });
    }

    // The pane's video area shows anything but black.
    bool ShowsPicture(int k) {
        VideoPane& pane = window->Pane(k);
        const QImage seen = pane.grab(QRect(2, 23, pane.width() - 4, pane.height() - 25)).toImage();
        return seen.pixelColor(seen.rect().center()) != QColor(Qt::black);
    }

    QWidget* Control(int id) { return window->ControlPanel().GetDlgItem(id); }
    QString Text(int id) { return window->ControlPanel().GetDlgItem<QAbstractButton>(id)->text(); }
    QString Page() { return window->ControlPanel().GetDlgItem<QLabel>(IDC_PAGE_TEXT)->text(); }

    // Queued commands have been carried out when this returns. At a place of the control's: a check
    // box is wider than what can be clicked.
    void Click(int id) {
        QTest::mouseClick(Control(id), Qt::LeftButton, {}, QPoint(8, Control(id)->height() / 2));
        QCoreApplication::processEvents();
    }

    std::unique_ptr<CMarvolenDlg> window;

private:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::User) receivers.insert(object);
        return false;
    }

    std::set<QObject*> receivers;  // of messages posted since the last Tick
};

}  // namespace marvolen::test

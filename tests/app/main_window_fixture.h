#pragma once

// The main window over sixteen cameras of our own, in a folder of its own.

#include "app/marvolen_dlg.h"
#include "platform/text_field.h"
#include "tests/app/camera_pictures.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace marvolen::test {

inline constexpr int kPatience = 20000;  // ms, for what happens at once on an idle machine

class MainWindow : public ::testing::Test {
protected:
    MainWindow() : server(Options(), std::make_shared<CameraPictures>()) {
        EXPECT_TRUE(server.Start()) << server.Error();
        g_channelInfo = FactoryChannelTable();
        for (int k = 0; k < kChannelCount; ++k) {
            ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
            SetFieldText(info.netName, "Camera " + std::to_string(k + 1));
            SetFieldText(info.host, "127.0.0.1");
            SetFieldText(info.port, std::to_string(server.Port(k)));
        }
    }
    ~MainWindow() override { g_channelInfo = FactoryChannelTable(); }

    static CameraServerOptions Options() {
        CameraServerOptions options;
        options.keepSent = false;
        return options;
    }

    // For what needs no cameras.
    void WithoutHosts() {
        for (int k = 0; k < kChannelCount; ++k) SetFieldText(Info(k).host, "");
    }

    ChannelInfo& Info(int k) { return g_channelInfo[static_cast<std::size_t>(k)]; }

    void Open() {
        window = std::make_unique<CMarvolenDlg>();
        window->CreateModeless();
    }

    bool IsConnected(int k) { return (window->Pane(k).GetStatus() & PANE_CONNECTED) != 0; }

    // Connected, and the pane shows another picture than it did.
    void ExpectLive(int k) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return IsConnected(k); }, kPatience)) << "channel " << k;
        const QImage before = VideoArea(k);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                const QImage now = VideoArea(k);
                return now != before && now.pixelColor(now.rect().center()) != QColor(Qt::black);
            },
            kPatience))
            << "channel " << k;
    }

    QImage VideoArea(int k) {
        VideoPane& pane = window->Pane(k);
        return pane.grab(QRect(2, 23, pane.width() - 4, pane.height() - 25)).toImage();
    }

    const TemporaryFolder folder;
    CameraServer server;
    std::unique_ptr<CMarvolenDlg> window;
};

}  // namespace marvolen::test

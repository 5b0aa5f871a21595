#pragma once

// Sixteen cameras of our own and the channel table for them, in a folder of its own.

#include "config/channel_info.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"

#include <QBuffer>
#include <QImage>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace marvolen::test {

// One small JPEG picture for ever.
class SmallPicture final : public PictureSource {
public:
    SmallPicture() {
        QImage image(96, 64, QImage::Format_RGB32);
        image.fill(Qt::cyan);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, "JPEG", 80);
        picture = MakePicture({bytes.begin(), bytes.end()});
    }
    PicturePtr At(const View&, std::uint64_t) override { return picture; }

private:
    PicturePtr picture;
};

class Cameras : public ::testing::Test {
protected:
    Cameras() : server({.keepSent = false}, std::make_shared<SmallPicture>()) {
        EXPECT_TRUE(server.Start()) << server.Error();
        g_channelInfo = FactoryChannelTable();
        for (int k = 0; k < kChannelCount; ++k) {
            SetFieldText(Info(k).netName, "Camera " + std::to_string(k + 1));
            SetFieldText(Info(k).host, "127.0.0.1");
            SetFieldText(Info(k).port, std::to_string(server.Port(k)));
        }
    }
    ~Cameras() override { g_channelInfo = FactoryChannelTable(); }

    static ChannelInfo& Info(int k) { return g_channelInfo[static_cast<std::size_t>(k)]; }

    // For what needs no pictures.
    void WithoutHosts() {
        for (int k = 0; k < kChannelCount; ++k) SetFieldText(Info(k).host, "");
    }

    const TemporaryFolder folder;
    CameraServer server;
};

}  // namespace marvolen::test

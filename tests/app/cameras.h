#pragma once

// Sixteen cameras of our own and the channel table for them, in a folder of its own.

#include "config/channel_info.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"

#include <QBuffer>
#include <QImage>

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace marvolen::test {

// Small JPEG pictures, each of another colour than the one before.
class ColourPictures final : public PictureSource {
public:
    ColourPictures() {
        for (std::size_t k = 0; k < loop.size(); ++k) {
            QImage image(96, 64, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(static_cast<int>(k * 360 / loop.size()), 200, 220));
            QByteArray bytes;
            QBuffer buffer(&bytes);
            image.save(&buffer, "JPEG", 80);
            loop[k] = MakePicture(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
        }
    }

    PicturePtr At(const View&, std::uint64_t position) override {
        return loop[position % loop.size()];
    }

private:
    std::array<PicturePtr, 8> loop;
};

class Cameras : public ::testing::Test {
protected:
    Cameras() : server({.keepSent = false}, std::make_shared<ColourPictures>()) {
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

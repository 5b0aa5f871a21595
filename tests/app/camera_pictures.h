#pragma once

// Small JPEG pictures for cameras under test: each view has a colour of its own and every picture
// differs from the one before.

#include "tools/camera_server/picture_source.h"

#include <QBuffer>
#include <QImage>

#include <array>
#include <vector>

namespace marvolen::test {

class CameraPictures final : public PictureSource {
public:
    CameraPictures() {
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

}  // namespace marvolen::test

#pragma once

#include "jpeg/dib_image.h"
#include "tests/jpeg/test_encoder.h"
#include "tests/jpeg/test_picture.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace marvolen::test {

// What came of decoding some bytes into a fresh DibImage.
struct Decoded {
    int result = 0;
    int error = 0;
    Picture picture;
};

// A bitmap as a Picture.
inline Picture ToPicture(const DibImage& image) {
    Picture picture{image.Width(), image.Height(), {}};
    for (int y = image.Height() - 1; y >= 0; --y) {
        const std::uint8_t* row = image.GetPixels() + static_cast<std::size_t>(y) * image.Stride();
        for (int x = 0; x < image.Width(); ++x, row += 3) {
            picture.rgb.insert(picture.rgb.end(), {row[2], row[1], row[0]});
        }
    }
    return picture;
}

inline Decoded Decode(const Bytes& jpeg, JpegPath path = JpegPath::Fast) {
    DibImage image;
    image.InitHeader();
    Decoded decoded;
    decoded.result = image.DecodeJpeg(jpeg.data(), jpeg.size(), path);
    decoded.error = image.LastError();
    if (decoded.result == 1) decoded.picture = ToPicture(image);
    return decoded;
}

// The mean absolute difference of two pictures of one size, over all bytes.
inline double MeanDifference(const Picture& a, const Picture& b) {
    if (a.rgb.size() != b.rgb.size()) return 255;
    double sum = 0;
    for (std::size_t i = 0; i < a.rgb.size(); ++i) sum += std::abs(a.rgb[i] - b.rgb[i]);
    return sum / static_cast<double>(a.rgb.size());
}

}  // namespace marvolen::test

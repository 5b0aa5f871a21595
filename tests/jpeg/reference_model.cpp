#include "tests/jpeg/reference_model.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marvolen::test {
namespace {

using Eight16 = std::array<std::int16_t, 8>;
using Eight32 = std::array<std::int64_t, 8>;

std::int16_t Wrap(int value) {
    return static_cast<std::int16_t>(value);
}

std::int32_t Wrap32(std::int64_t value) {
    return static_cast<std::int32_t>(value);
}

std::int16_t Times(std::int16_t value, int constant) {
    const int shifted = Wrap(value * 4);
    return Wrap(static_cast<int>(std::floor(shifted * static_cast<double>(constant) / 65536)));
}

Eight16 AanTransform(const Eight16& x) {
    const std::int16_t t10 = Wrap(x[0] + x[4]), t11 = Wrap(x[0] - x[4]), t13 = Wrap(x[2] + x[6]);
    const std::int16_t t12 = Wrap(Times(Wrap(x[2] - x[6]), 23170) - t13);
    const std::int16_t e0 = Wrap(t10 + t13), e3 = Wrap(t10 - t13);
    const std::int16_t e1 = Wrap(t11 + t12), e2 = Wrap(t11 - t12);
    const std::int16_t z13 = Wrap(x[5] + x[3]), z10 = Wrap(x[5] - x[3]);
    const std::int16_t z11 = Wrap(x[1] + x[7]), z12 = Wrap(x[1] - x[7]);
    const std::int16_t t7 = Wrap(z11 + z13);
    const std::int16_t o11 = Times(Wrap(z11 - z13), 23170);
    const std::int16_t o10 = Wrap(Times(z10, -30273) + Times(z12, -12540));
    const std::int16_t o12 = Wrap(Times(z10, -12540) + Times(z12, 30273));
    const std::int16_t t6 = Wrap(o12 - t7), t5 = Wrap(o11 - t6), t4 = Wrap(o10 + t5);
    return {Wrap(e0 + t7), Wrap(e1 + t6), Wrap(e2 + t5), Wrap(e3 - t4),
            Wrap(e3 + t4), Wrap(e2 - t5), Wrap(e1 - t6), Wrap(e0 - t7)};
}

Eight32 LlmTransform(const Eight32& x) {
    const auto fixed = [](double factor) { return std::llround(factor * 8192); };
    const std::int64_t z1 = (x[2] + x[6]) * fixed(0.541196100);
    const std::int64_t p2 = z1 - x[6] * fixed(1.847759065);
    const std::int64_t p3 = z1 + x[2] * fixed(0.765366865);
    const std::int64_t p0 = (x[0] + x[4]) * 8192, p1 = (x[0] - x[4]) * 8192;
    const std::int64_t a0 = p0 + p3, a3 = p0 - p3, a1 = p1 + p2, a2 = p1 - p2;
    const std::int64_t q5 = (x[7] + x[3] + x[5] + x[1]) * fixed(1.175875602);
    const std::int64_t q1 = (x[7] + x[1]) * -fixed(0.899976223);
    const std::int64_t q2 = (x[5] + x[3]) * -fixed(2.562915447);
    const std::int64_t q3 = q5 - (x[7] + x[3]) * fixed(1.961570560);
    const std::int64_t q4 = q5 - (x[5] + x[1]) * fixed(0.390180644);
    const std::int64_t b0 = x[7] * fixed(0.298631336) + q1 + q3;
    const std::int64_t b1 = x[5] * fixed(2.053119869) + q2 + q4;
    const std::int64_t b2 = x[3] * fixed(3.072711026) + q2 + q3;
    const std::int64_t b3 = x[1] * fixed(1.501321110) + q1 + q4;
    return {a0 + b3, a1 + b2, a2 + b1, a3 + b0, a3 - b0, a2 - b1, a1 - b2, a0 - b3};
}

std::uint8_t Clamp(std::int64_t value) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

// All samples of a component, row by row.
struct Plane {
    int stride = 0;
    std::vector<std::uint8_t> samples;

    int At(int x, int y) const { return samples[static_cast<std::size_t>(y * stride + x)]; }
};

Plane ModelPlane(const ReferenceComponent& component) {
    Plane plane;
    plane.stride = component.blocksPerRow * 8;
    plane.samples.resize(static_cast<std::size_t>(plane.stride * component.blockRows * 8));
    const Block table = ModelFastTable(component.quantisation);
    for (int row = 0; row < component.blockRows; ++row) {
        for (int column = 0; column < component.blocksPerRow; ++column) {
            Block coefficients;
            std::copy_n(component.Block(row, column), 64, coefficients.begin());
            const SampleBlock samples = ModelFastIdct(coefficients, table);
            for (int i = 0; i < 64; ++i) {
                const int position = (row * 8 + i / 8) * plane.stride + column * 8 + i % 8;
                plane.samples[static_cast<std::size_t>(position)] =
                    samples[static_cast<std::size_t>(i)];
            }
        }
    }
    return plane;
}

}  // namespace

Block ModelFastTable(const std::array<int, 64>& quantisation) {
    const auto scale = [](std::size_t k) {
        return k == 0
                   ? 1.0
                   : std::numbers::sqrt2 * std::cos(static_cast<double>(k) * std::numbers::pi / 16);
    };
    Block table;
    for (std::size_t i = 0; i < 64; ++i) {
        const auto factor = std::llround(16384 * scale(i / 8) * scale(i % 8));
        table[i] = static_cast<std::int16_t>((factor * quantisation[i] + 2048) >> 12);
    }
    return table;
}

SampleBlock ModelFastIdct(const Block& coefficients, const Block& table) {
    Block work;
    for (std::size_t i = 0; i < 64; ++i) work[i] = Wrap(coefficients[i] * table[i]);
    for (std::size_t pass = 0; pass < 2; ++pass) {
        const std::size_t step = pass == 0 ? 8 : 1;  // down a column, then along a row
        const std::size_t start = pass == 0 ? 1 : 8;
        for (std::size_t line = 0; line < 8; ++line) {
            Eight16 x;
            for (std::size_t i = 0; i < 8; ++i) x[i] = work[line * start + i * step];
            x = AanTransform(x);
            for (std::size_t i = 0; i < 8; ++i) work[line * start + i * step] = x[i];
        }
    }
    SampleBlock samples;
    for (std::size_t i = 0; i < 64; ++i) {
        samples[i] = Clamp(static_cast<int>(std::floor(work[i] / 32.0)) + 128);
    }
    return samples;
}

SampleBlock ModelPlainIdct(const Block& coefficients) {
    Block work;
    SampleBlock samples;
    Eight32 x;
    for (std::size_t row = 0; row < 8; ++row) {
        for (std::size_t i = 0; i < 8; ++i) x[i] = coefficients[row * 8 + i];
        x = LlmTransform(x);
        for (std::size_t i = 0; i < 8; ++i) {
            work[row * 8 + i] = static_cast<std::int16_t>(Wrap32(x[i] + 1024) >> 11);
        }
    }
    for (std::size_t column = 0; column < 8; ++column) {
        for (std::size_t i = 0; i < 8; ++i) x[i] = work[i * 8 + column];
        x = LlmTransform(x);
        for (std::size_t i = 0; i < 8; ++i) {
            samples[i * 8 + column] = Clamp((Wrap32(x[i] + 131072) >> 18) + 128);
        }
    }
    return samples;
}

std::array<std::uint8_t, 3> ModelColour(int y, int cb, int cr) {
    const int red = (91882 * (cr - 128) + 32768) >> 16;
    const int blue = (116130 * (cb - 128) + 32768) >> 16;
    const int greenCr = -46802 * (cr - 128);
    const int greenCb = -22554 * (cb - 128) + 32768;
    return {Clamp(y + red), Clamp(y + ((greenCb + greenCr) >> 16)), Clamp(y + blue)};
}

Picture ModelFastPicture(const std::vector<ReferenceComponent>& components, int width, int height) {
    std::vector<Plane> planes;
    for (const ReferenceComponent& component : components) planes.push_back(ModelPlane(component));
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int luma = planes[0].At(x, y);
            std::array<std::uint8_t, 3> rgb;
            if (planes.size() == 1) {
                rgb.fill(static_cast<std::uint8_t>(luma));
            } else {
                const int chromaX = x / components[0].horizontal;
                const int chromaY = y / components[0].vertical;
                rgb = ModelColour(luma, planes[1].At(chromaX, chromaY),
                                  planes[2].At(chromaX, chromaY));
            }
            picture.rgb.insert(picture.rgb.end(), rgb.begin(), rgb.end());
        }
    }
    return picture;
}

}  // namespace marvolen::test

#pragma once

// Where a camera's pictures come from. A source answers one question: which picture does this
// channel's camera see at this moment of its loop? Sources hand out shared, constant pictures, so
// that serving one costs no copy.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace marvolen {

enum class PictureSize { Full, Sif, Qsif };

struct PictureExtent {
    int width = 0;
    int height = 0;
};

// 704 x 480, 352 x 240, 176 x 120.
PictureExtent ExtentOf(PictureSize size);

// "full", "sif", "qsif", as a request's fmt option names them.
const char* SizeName(PictureSize size);

struct Picture {
    std::vector<std::uint8_t> jpeg;
    std::uint64_t hash = 0;  // HashBytes(jpeg), so that what was sent can be named cheaply
};

using PicturePtr = std::shared_ptr<const Picture>;

// FNV-1a, 64 bits.
std::uint64_t HashBytes(const std::uint8_t* bytes, std::size_t count);

// The picture of these bytes, with its hash.
PicturePtr MakePicture(std::vector<std::uint8_t> jpeg);

struct View {
    int channel = 0;  // zero-based
    int camera = 0;   // zero-based, the server's four inputs
    PictureSize size = PictureSize::Full;

    friend auto operator<=>(const View&, const View&) = default;
};

class PictureSource {
public:
    virtual ~PictureSource() = default;

    // The view's picture at a position of its endless time line, in steps of 1/30 s; sources loop
    // as they like. Null while the source is still busy making its first one: the server then sends
    // nothing and asks again. Called on the server's thread; must return at once.
    virtual PicturePtr At(const View& view, std::uint64_t position) = 0;
};

}  // namespace marvolen

// decode_jpeg [--plain] IN OUT.ppm: decodes one JPEG file with the decoder of the panes.
//
// Prints one line, result=R error=E width=W height=H, where R is what DibImage::DecodeJpeg
// returned and E the decoder's stored error. When R is 1 the picture is written as a binary PPM and
// the exit status is 0; in every other case it is 1.

#include "jpeg/dib_image.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kExitFailure = 1;

// A folder can be opened, but not read.
bool ReadFile(const char* path, std::vector<std::uint8_t>& bytes) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 65536> portion;
    while (file.read(portion.data(), portion.size()) || file.gcount() > 0) {
        bytes.insert(bytes.end(), portion.begin(), portion.begin() + file.gcount());
    }
    return file.eof() && !file.bad();
}

// Writes the bitmap top row first and as R, G, B.
bool WritePpm(const char* path, const marvolen::DibImage& image) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << image.Width() << ' ' << image.Height() << "\n255\n";
    std::string line(static_cast<std::size_t>(image.Width()) * 3, '\0');
    for (int y = image.Height() - 1; y >= 0; --y) {
        const std::uint8_t* row = image.GetPixels() + static_cast<std::size_t>(y) * image.Stride();
        for (std::size_t i = 0; i < line.size(); i += 3) {
            for (std::size_t c = 0; c < 3; ++c) line[i + c] = static_cast<char>(row[i + 2 - c]);
        }
        file << line;
    }
    return static_cast<bool>(file.flush());
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string_view> arguments(argv + 1, argv + argc);
    const bool plain = !arguments.empty() && arguments.front() == "--plain";
    if (arguments.size() != (plain ? 3U : 2U)) {
        std::fprintf(stderr, "usage: decode_jpeg [--plain] IN OUT.ppm\n");
        return kExitFailure;
    }
    const char* in = argv[argc - 2];
    const char* out = argv[argc - 1];
    std::vector<std::uint8_t> bytes;
    if (!ReadFile(in, bytes)) {
        std::fprintf(stderr, "decode_jpeg: can't read %s\n", in);
        return kExitFailure;
    }
    marvolen::DibImage image;
    image.InitHeader();
    const auto path = plain ? marvolen::JpegPath::Plain : marvolen::JpegPath::Fast;
    const int result = image.DecodeJpeg(bytes.data(), bytes.size(), path);
    std::printf("result=%d error=%d width=%d height=%d\n", result, image.LastError(), image.Width(),
                image.Height());
    if (result != 1) return kExitFailure;
    if (!WritePpm(out, image)) {
        std::fprintf(stderr, "decode_jpeg: can't write %s\n", out);
        return kExitFailure;
    }
    return 0;
}

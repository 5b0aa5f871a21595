// Cutting pictures out of camera streams against copying the same bytes, in one run.
//
//   parser_bench [--turns N] [FOLDER]
//
// The stream is a camera's answer of a few hundred JPEG files from FOLDER, or of made-up
// photographs, and both take it in pieces of 2003 bytes, as the program receives it. A line tells
// the parser's speed and its processor time as a share of memcpy's into the same slots.

#include "bench/alternate.h"
#include "bench/photograph.h"
#include "net/frame_pool.h"
#include "net/multipart_parser.h"
#include "tools/camera_server/camera_answer.h"
#include "tools/camera_server/folder_pictures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace marvolen {
namespace {

constexpr std::size_t kPiece = 2003;
constexpr std::uint64_t kPictures = 300;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "parser_bench: %s\n", what);
    std::exit(1);
}

class MadeUpPictures final : public PictureSource {
public:
    PicturePtr At(const View&, std::uint64_t n) override { return pictures[n % pictures.size()]; }

private:
    const std::array<PicturePtr, 2> pictures{
        MakePicture(bench::EncodeJpeg(bench::MakePhotograph(704, 480, 6, 1), 75)),
        MakePicture(bench::EncodeJpeg(bench::MakePhotograph(704, 480, 6, 2), 75))};
};

std::string MakeStream(PictureSource& pictures) {
    std::string stream = StreamHead();
    for (std::uint64_t n = 1; n <= kPictures; ++n) {
        const auto counter = static_cast<std::uint32_t>(n);
        const AnswerPart part = MakeStreamPart({}, n, pictures.At({}, n), StampNow(counter));
        stream += part.before;
        stream.append(part.picture->jpeg.begin(), part.picture->jpeg.end());
        stream += part.after;
    }
    return stream;
}

template <typename Take>
void InPieces(std::span<const std::uint8_t> bytes, Take take) {
    while (!bytes.empty()) {
        const std::size_t count = std::min(kPiece, bytes.size());
        take(bytes.first(count));
        bytes = bytes.subspan(count);
    }
}

void Parse(FramePool& pool, std::span<const std::uint8_t> stream) {
    MultipartParser parser;
    std::uint64_t pictures = 0;
    parser.Init(pool.Acquire(), [&](FramePtr frame) {
        ++pictures;
        frame.reset();
        parser.SetBuffer(pool.Acquire());
    });
    InPieces(stream, [&](std::span<const std::uint8_t> piece) { parser.Feed(piece); });
    Require(pictures == kPictures, "pictures were lost");
}

void Copy(std::vector<std::uint8_t>& slots, std::span<const std::uint8_t> stream) {
    std::size_t position = 0;
    InPieces(stream, [&](std::span<const std::uint8_t> piece) {
        if (position + piece.size() > slots.size()) position = 0;
        std::memcpy(slots.data() + position, piece.data(), piece.size());
        position += piece.size();
    });
}

int Run(int argc, char** argv) {
    int turns = 60;
    FolderPictures folder;
    MadeUpPictures madeUp;
    PictureSource* pictures = &madeUp;
    for (int k = 1; k < argc; ++k) {
        if (std::strcmp(argv[k], "--turns") == 0 && k + 1 < argc) {
            turns = std::max(1, std::atoi(argv[++k]));
        } else {
            Require(folder.Load(argv[k]), "no pictures in the folder");
            pictures = &folder;
        }
    }
    const std::string text = MakeStream(*pictures);
    const std::vector<std::uint8_t> stream(text.begin(), text.end());
    FramePool pool;
    Require(pool.Init(kFrameCapacity, kFrameCount), "no memory");
    std::vector<std::uint8_t> slots(std::size_t{kFrameCapacity} * kFrameCount);
    const bench::Turns taken = bench::Alternate(
        turns, [&] { Parse(pool, stream); }, [&] { Copy(slots, stream); });
    std::printf("parser: %.2f GB/s, %.2f of memcpy's processor time\n",
                double(stream.size()) / bench::Median(taken.ours) * 1e-9, taken.Ratio());
    return 0;
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    return marvolen::Run(argc, argv);
}

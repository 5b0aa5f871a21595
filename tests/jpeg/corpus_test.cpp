// Every file of the corpus on both paths, whole, in pieces, and into a bitmap with every set of
// kernels.
//
// To add one: put NAME.jpg into corpus/ and run jpeg_test. It fails and prints the line for
// corpus/index.txt; make sure by other means that the result is right, and say in the line why the
// file is there.

#include "tests/jpeg/corpus.h"

#include "jpeg/dib_image.h"
#include "jpeg/jpeg_decoder.h"
#include "jpeg/jpeg_kernels.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>

namespace marvolen::test {
namespace {

// What came of decoding a file.
struct Outcome {
    std::string stage;  // in which it failed, or ok
    int error = 0;
    std::size_t width = 0, height = 0;  // 0: no picture
    Bytes bgr;                          // top row first, black where no row came

    // As index.txt has it.
    std::string ToString() const {
        std::ostringstream text;
        text << stage;
        if (error != 0) text << ':' << error;
        char digest[9];
        std::snprintf(digest, sizeof digest, "%08x", Digest(bgr));
        if (width != 0) text << ':' << width << 'x' << height << ':' << digest;
        return text.str();
    }
};

Outcome Decode(const Bytes& jpeg, JpegPath path, int portion) {
    Outcome outcome;
    PortionSource source(jpeg, portion);
    {
        JpegDecoder decoder(&source, path);
        outcome.stage = decoder.GetError() != 0 ? "construct" : "start";
        const bool started = decoder.StartDecompress() == 0;
        EXPECT_EQ(decoder.StartDecompress(), started ? 0 : -1);
        const int bytesPerPixel = decoder.GetBytesPerPixel();
        if (started) {
            outcome.width = static_cast<std::size_t>(decoder.GetWidth());
            outcome.height = static_cast<std::size_t>(decoder.GetHeight());
            EXPECT_EQ(bytesPerPixel, decoder.GetComponents() == 1 ? 1 : 4);
        }
        const std::uint8_t* row = nullptr;
        int rowBytes = 0;
        int result = 0;
        while ((result = decoder.ReadScanline(&row, &rowBytes)) == 0) {
            EXPECT_EQ(rowBytes, decoder.GetWidth() * bytesPerPixel);
            for (int i = 0; i < rowBytes; i += bytesPerPixel) {
                for (const int c : {2, 1, 0}) outcome.bgr.push_back(row[i + c % bytesPerPixel]);
            }
        }
        outcome.error = decoder.GetError();
        if (started) outcome.stage = outcome.error == 0 ? "ok" : "rows";
        EXPECT_EQ(result, !started ? -1 : outcome.error != 0 ? -227 : 1);
        EXPECT_EQ(decoder.ReadScanline(&row, &rowBytes), outcome.error != 0 ? -1 : 1);
        const std::size_t whole = 3 * outcome.width * outcome.height;
        EXPECT_EQ(outcome.bgr.size() == whole, outcome.stage != "rows");
        outcome.bgr.resize(whole);
        EXPECT_EQ(source.ended, outcome.error == 0 ? 0 : 1) << "let go with the failure";
    }
    EXPECT_EQ(source.begun * 10 + source.ended, 11);
    return outcome;
}

void ExpectSameBitmap(const Bytes& jpeg, JpegPath path, const Outcome& expected) {
    DibImage image;
    image.InitHeader();
    EXPECT_EQ(image.DecodeJpeg(jpeg.data(), jpeg.size(), path), expected.width == 0 ? 0 : 1);
    EXPECT_EQ(image.LastError(), expected.error);
    const std::size_t rowBytes = 3 * expected.width, stride = (rowBytes + 3) / 4 * 4;
    BITMAPINFOHEADER header{.biSize = 40,
                            .biWidth = static_cast<std::int32_t>(expected.width),
                            .biHeight = static_cast<std::int32_t>(expected.height),
                            .biPlanes = 1,
                            .biBitCount = static_cast<std::uint16_t>(rowBytes == 0 ? 0 : 24)};
    header.biSizeImage = static_cast<std::uint32_t>(stride * expected.height);
    ASSERT_EQ(image.GetHeader(), header);
    const std::uint8_t* line = image.GetPixels() + header.biSizeImage;
    for (std::size_t at = 0; at < expected.bgr.size(); at += rowBytes) {
        line -= stride;
        ASSERT_TRUE(std::equal(line, line + rowBytes, expected.bgr.data() + at)) << at / rowBytes;
        ASSERT_TRUE(std::all_of(line + rowBytes, line + stride, [](int b) { return b == 0; }));
    }
}

std::string DecodeEveryWay(const Bytes& jpeg, JpegPath path) {
    const Outcome whole = Decode(jpeg, path, 1 << 20);
    for (const int portion : {1, 4095}) {
        EXPECT_EQ(Decode(jpeg, path, portion).ToString(), whole.ToString()) << "in pieces";
    }
    std::uint32_t half = 0;
    for (const JpegKernels* kernels : AvailableJpegKernels()) {
        SCOPED_TRACE(kernels->name);
        ForceJpegKernels(kernels);
        ExpectSameBitmap(jpeg, path, whole);
        DibImage image;
        image.DecodeJpeg(jpeg.data(), jpeg.size(), path, JpegScale::Half);
        const std::uint8_t* const pixels = image.GetPixels();
        const std::uint32_t digest = Digest({pixels, pixels + image.GetHeader().biSizeImage});
        if (kernels == AvailableJpegKernels().front()) half = digest;
        EXPECT_EQ(digest, half);
    }
    ForceJpegKernels(nullptr);
    return whole.ToString();
}

std::set<std::string> CorpusFiles() {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(JPEG_CORPUS)) {
        if (entry.path().extension() == ".jpg") files.insert(entry.path().stem());
    }
    return files;
}

// Damages the data of the first scan, or cuts the stream there or in the scan header.
void Damage(Bytes& jpeg, std::mt19937& random) {
    constexpr std::uint8_t kStartOfScan[] = {0xFF, 0xDA};
    const auto scan = std::search(jpeg.begin(), jpeg.end(), kStartOfScan, kStartOfScan + 2);
    const std::ptrdiff_t length = jpeg.end() - scan - 14;
    if (length <= 0) return;
    const auto at = scan + 14 + static_cast<std::ptrdiff_t>(random()) % length;
    const std::ptrdiff_t where = at - jpeg.begin();
    const auto restart = static_cast<std::uint8_t>(0xD0 + random() % 8);
    const std::uint8_t marker[] = {0xFF, random() % 2 == 0 ? restart : std::uint8_t{0}};
    switch (random() % 8) {
        case 0:
            jpeg.erase(random() % 2 == 0 ? at : scan + 7 + restart % 8, jpeg.end());
            break;
        case 1:
            jpeg.insert(at, marker, marker + 2);
            break;
        case 2:
            // Longer than it should be, so that some is left when the restart comes.
            for (auto more = random() % 8; more > 0; --more) {
                jpeg.insert(jpeg.begin() + where, marker, marker + 2);
            }
            break;
        case 3:
            jpeg.erase(at);
            break;
        default:
            *at = static_cast<std::uint8_t>(*at ^ 1U << random() % 8);
            break;
    }
}

// Damage leads into every corner, and there a stream in memory must go as one in pieces does.
TEST(CorpusTest, DamagedFilesDecodeInMemoryAsInPieces) {
    std::mt19937 random(11);
    for (const std::string& name : CorpusFiles()) {
        SCOPED_TRACE(name);
        const Bytes sound = ReadCorpusFile(name);
        const bool hasRestarts = name.find("restart") != std::string::npos;
        for (int i = hasRestarts ? 150 : 15; i > 0 && !HasFailure(); --i) {
            Bytes jpeg = sound;
            for (auto times = 1 + random() % 3; times > 0; --times) Damage(jpeg, random);
            ExpectSameBitmap(jpeg, JpegPath::Fast, Decode(jpeg, JpegPath::Fast, 4096));
        }
    }
}

TEST(CorpusTest, EveryFileDecodesAsItsLineSays) {
    std::set<std::string> files = CorpusFiles();
    const auto check = [](const std::string& name, const std::string& expected) {
        SCOPED_TRACE(name);
        const std::string fast = DecodeEveryWay(ReadCorpusFile(name), JpegPath::Fast);
        const std::string plain = DecodeEveryWay(ReadCorpusFile(name), JpegPath::Plain);
        const std::string now = fast + " " + (plain == fast ? "=" : plain);
        EXPECT_EQ(now, expected) << "now: " << name << " " << now;
    };
    std::ifstream index(std::string(JPEG_CORPUS) + "/index.txt");
    for (std::string line; std::getline(index, line);) {
        std::istringstream words(line);
        std::string name, fast, plain, why;
        if (!(words >> name >> fast >> plain >> why) || name == "#") continue;
        EXPECT_EQ(files.erase(name), 1U) << name << " is no file, or twice in the index";
        check(name, fast + " " + plain);
    }
    for (const std::string& name : files) check(name, "a line in the index");
}

}  // namespace
}  // namespace marvolen::test

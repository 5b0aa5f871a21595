// Sound streams of unusual make, written by hand: markers, tables, entropy-coded data and its end.

#include "jpeg/jpeg_decoder.h"
#include "jpeg/memory_jpeg_source.h"
#include "tests/jpeg/decoding.h"
#include "tests/jpeg/reference_model.h"
#include "tests/jpeg/stream_builder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace marvolen::test {
namespace {

using Builder = StreamBuilder;

// One gray block of the given DC, all coefficients 0 otherwise.
Builder& FlatBlock(Builder& stream, int difference) {
    return stream.Dc(difference).Bits(kEob, 8);
}

// The bytes of an 8 x 8 gray picture of the level 128 + 160 / 8 = 148, around what head holds.
Bytes FlatPicture(Builder head) {
    return FlatBlock(head.Sos({{1}}), 160).Flush().Eoi().Take();
}

void ExpectFlat(const Bytes& jpeg, int fastLevel, int plainLevel, const char* what) {
    for (const auto& [path, level] :
         {std::pair{JpegPath::Fast, fastLevel}, {JpegPath::Plain, plainLevel}}) {
        const Decoded decoded = Decode(jpeg, path);
        EXPECT_EQ(decoded.result, 1) << what << ", error " << decoded.error;
        EXPECT_EQ(decoded.error, 0) << what;
        EXPECT_EQ(decoded.picture.rgb, Bytes(8 * 8 * 3, static_cast<std::uint8_t>(level))) << what;
    }
}

void ExpectFlat(const Bytes& jpeg, int level, const char* what) {
    ExpectFlat(jpeg, level, level, what);
}

Bytes Head() {
    return GrayHead(8, 8).Take();
}

// Head with its start-of-image marker replaced.
Builder After(const Bytes& start) {
    const Bytes head = Head();
    Builder stream;
    return stream.Raw(start).Raw({head.begin() + 2, head.end()});
}

Bytes Junk(std::size_t count) {
    Bytes bytes(count, 0x41);
    bytes.insert(bytes.end(), {0xFF, 0xD8});
    return bytes;
}

TEST(MarkerTest, OddSegmentsAreSkipped) {
    ExpectFlat(FlatPicture(GrayHead(8, 8)), 148, "as it should be");
    ExpectFlat(FlatPicture(After({0xFF, 0xD8, 0xFF, 0xFF, 0xFF, 0xE0, 0, 3, 9})), 148,
               "fill bytes");
    ExpectFlat(FlatPicture(After({0xFF, 0xD8, 0xFF, 0x00, 0x12, 0xFF, 0x00})), 148, "FF 00");
    ExpectFlat(FlatPicture(After({0xFF, 0xD8, 0xFF, 0xE5, 0, 2})), 148, "empty segment");
    ExpectFlat(FlatPicture(After({0xFF, 0xD8, 0xFF, 0xDC, 0, 4, 0, 9, 1, 2, 3})), 148, "DNL, junk");
    ExpectFlat(FlatPicture(After({0xFF, 0xD8, 0xFF, 0x02, 0, 2, 0xFF, 0xBF, 0, 2})), 148,
               "reserved");
    Builder large = Builder().Soi().Segment(0xE1, Bytes(60000, 0xFF)).Segment(0xFE, Bytes(9));
    ExpectFlat(FlatPicture(After(large.Take())), 148, "segment larger than the buffer");
}

TEST(MarkerTest, StartOfImageMayStandBehindJunk) {
    for (const std::size_t junk : {1U, 200U, 511U}) {
        ExpectFlat(FlatPicture(After(Junk(junk))), 148, "junk");
    }
    Bytes twoFf = {0x41, 0xFF, 0xFF, 0xD8};
    ExpectFlat(FlatPicture(After(twoFf)), 148, "FF FF D8");
    for (const std::size_t junk : {512U, 600U}) {
        const Decoded decoded = Decode(FlatPicture(After(Junk(junk))));
        EXPECT_EQ(decoded.result, 0);
        EXPECT_EQ(decoded.error, -217);
    }
}

TEST(TableTest, SegmentsMayHoldSeveralTables) {
    Bytes huffman = Builder::DcTable(1);
    for (const Bytes& table :
         {Builder::AcTable({9, 9}, 1), Builder::DcTable(), Builder::AcTable(kAcSymbols)}) {
        huffman.insert(huffman.end(), table.begin(), table.end());
    }
    Bytes quant = Builder::QuantTable(3, 700, 16);
    const Bytes second = Builder::QuantTable(0, 1);
    quant.insert(quant.end(), second.begin(), second.end());
    Builder stream;
    stream.Soi().Segment(0xDB, quant).Dht(huffman).Sof(0xC0, 8, 8, {{1, 0x11}});
    ExpectFlat(FlatPicture(stream), 148, "several tables");
}

TEST(TableTest, LaterDefinitionsReplaceEarlierOnes) {
    Builder stream;
    stream.Soi().Dqt(0, 9).Dht(Builder::AcTable({1, 2, 3, 4, 5, 6}));
    stream.Dht(Builder::HuffmanTable(0, {1}, {7}));
    stream.Raw(GrayHead(8, 8).Take());  // begins with another SOI
    Bytes jpeg = FlatPicture(stream);
    const auto secondSoi =
        std::search(jpeg.begin() + 2, jpeg.end(), jpeg.begin(), jpeg.begin() + 2);
    jpeg.erase(secondSoi, secondSoi + 2);
    ExpectFlat(jpeg, 148, "replaced");
    // Between frame and scan header the same goes on.
    Builder late = GrayHead(8, 8).Dqt(0, 2);
    ExpectFlat(FlatPicture(late), 168, "replaced behind the frame header");
    // And between the data and EOI: before the last row's inverse DCT, after its Huffman decoding.
    Builder last = GrayHead(8, 8).Sos({{1}});
    FlatBlock(last, 160).Flush().Dqt(0, 2).Eoi();
    ExpectFlat(last.Take(), 168, 148, "replaced behind the last row");
    // A decoder has room for 100 tables, but not for as many different ones.
    Builder many = Builder().Soi();
    for (int i = 0; i < 120; ++i) {
        many.Dqt(i % 4, i).Dht(Builder::DcTable(i % 4)).Dht(Builder::AcTable({9}, i % 4));
    }
    const Bytes head = Head();
    ExpectFlat(FlatPicture(many.Raw({head.begin() + 2, head.end()})), 148, "replaced 120 times");
}

TEST(TableTest, AHuffmanTableMayHave255Codes) {
    // 9 bits each; the last one is the end of block.
    Bytes symbols;
    for (int i = 0; i < 255; ++i) symbols.push_back(static_cast<std::uint8_t>(254 - i));
    Builder stream = GrayHead(8, 8);
    stream.Dht(Builder::HuffmanTable(0x10, {0, 0, 0, 0, 0, 0, 0, 0, 255}, symbols));
    stream.Sos({{1}}).Dc(160).Bits(254, 9).Flush().Eoi();
    ExpectFlat(stream.Take(), 148, "255 codes");
}

TEST(TableTest, ASequentialScanIgnoresItsBand) {
    Builder stream = GrayHead(8, 8).Sos({{1}}, {5, 0, 0x21});
    ExpectFlat(FlatBlock(stream, 160).Flush().Eoi().Take(), 148, "5, 0, 0x21");
}

TEST(TableTest, GraySamplingFactorsMeanNothing) {
    for (const int sampling : {0x11, 0x22, 0x41, 0x14, 0xFF, 0x00}) {
        for (const int sof : {0xC0, 0xC1, 0xC2}) {
            Builder stream;
            stream.Soi().Dqt().Dht(Builder::DcTable()).Dht(Builder::AcTable(kAcSymbols));
            stream.Sof(sof, 8, 8, {{1, sampling}});
            if (sof == 0xC2) {
                stream.Sos({{1}}, {0, 0, 0}).Dc(160).Flush().Eoi();
                ExpectFlat(stream.Take(), 148, "progressive");
            } else {
                ExpectFlat(FlatPicture(stream), 148, "sequential");
            }
        }
    }
}

// A 16 x 8 gray picture of two blocks.
void ExpectBlocks(const Bytes& jpeg, const Block& first, const Block& second = {}) {
    std::array<int, 64> ones;
    ones.fill(1);
    const Block table = ModelFastTable(ones);
    for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
        const auto transform = [&](const Block& block) {
            return path == JpegPath::Fast ? ModelFastIdct(block, table) : ModelPlainIdct(block);
        };
        const SampleBlock samples[] = {transform(first), transform(second)};
        const Decoded decoded = Decode(jpeg, path);
        ASSERT_EQ(decoded.result, 1);
        ASSERT_EQ(decoded.error, 0);
        for (std::size_t y = 0; y < 8; ++y) {
            for (std::size_t x = 0; x < 16; ++x) {
                const int expected = samples[x / 8][8 * y + x % 8];
                ASSERT_EQ(decoded.picture.rgb[3 * (16 * y + x)], expected) << x << ", " << y;
            }
        }
    }
}

TEST(EntropyTest, FullBlockHasNoEndOfBlock) {
    Builder stream = GrayHead(16, 8).Sos({{1}}).Dc(0);
    Block block{};
    for (std::size_t i = 1; i < 64; ++i) {
        block[i] = i % 3 == 0 ? 1 : -1;
    }
    // Zigzag order, worked out by walking the diagonals.
    for (int diagonal = 1; diagonal < 15; ++diagonal) {
        for (int i = 0; i <= diagonal; ++i) {
            const int row = diagonal % 2 == 1 ? i : diagonal - i;
            const int column = diagonal - row;
            if (row > 7 || column > 7) continue;
            stream.Bits(kOne, 8).Bits(block[static_cast<std::size_t>(8 * row + column)] > 0, 1);
        }
    }
    FlatBlock(stream, 0).Flush().Eoi();
    ExpectBlocks(stream.Take(), block);
}

TEST(EntropyTest, ZeroRunMayEndTheBlock) {
    Block block{};
    block[5] = 1;  // zigzag position 15, the end of the fifth diagonal
    const auto putAc = [](Builder& stream) -> Builder& {
        stream.Bits(kOneAfter14, 8).Bits(1, 1);
        return stream.Bits(kZrl, 8).Bits(kZrl, 8).Bits(kZrl, 8);
    };
    Builder sequential = GrayHead(16, 8).Sos({{1}}).Dc(0);
    ExpectBlocks(FlatBlock(putAc(sequential), 0).Flush().Eoi().Take(), block);
    Builder progressive = GrayHead(16, 8, 0, 0xC2).Sos({{1}}, {0, 0, 0}).Dc(0).Dc(0).Flush();
    putAc(progressive.Sos({{1}}, {1, 63, 0})).Bits(kEob, 8).Flush().Eoi();
    ExpectBlocks(progressive.Take(), block);
}

TEST(EntropyTest, RestartMarkersCountModulo8) {
    for (const bool progressive : {false, true}) {
        Builder stream = GrayHead(8 * 20, 8, 1, progressive ? 0xC2 : 0xC0);
        stream.Sos({{1}}, {0, progressive ? 0 : 63, 0});
        for (int i = 0; i < 20; ++i) {
            // Behind a restart the prediction is 0 again; in front of it there may be junk.
            if (i > 0)
                stream.Flush()
                    .Raw(Bytes(static_cast<std::size_t>(i) * 40))
                    .Raw({0xFF, 0xFF})
                    .Marker(0xD0 + (i - 1) % 8);
            stream.Dc(8 * i);
            if (!progressive) stream.Bits(kEob, 8);
        }
        stream.Flush().Eoi();
        for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
            const Decoded decoded = Decode(stream.Take(), path);
            ASSERT_EQ(decoded.result, 1);
            ASSERT_EQ(decoded.error, 0);
            for (std::size_t i = 0; i < 20; ++i) {
                EXPECT_EQ(decoded.picture.rgb[i * 8 * 3], 128 + i);
            }
        }
    }
}

TEST(EntropyTest, EndOfBandRunEndsAtARestart) {
    // A run of three blocks, of which the restart leaves one.
    constexpr int kRunOf2To3 = 5;
    Bytes symbols = kAcSymbols;
    symbols.push_back(0x10);
    Builder stream = GrayHead(16, 8, 1, 0xC2).Dht(Builder::AcTable(symbols));
    stream.Sos({{1}}, {0, 0, 0}).Dc(0).Flush().Marker(0xD0).Dc(0).Flush();
    stream.Sos({{1}}, {1, 63, 0}).Bits(kRunOf2To3, 8).Bits(1, 1).Flush().Marker(0xD0);
    stream.Bits(kOne, 8).Bits(1, 1).Bits(kEob, 8).Flush().Eoi();
    ExpectBlocks(stream.Take(), {}, {0, 1});
}

TEST(EntropyTest, RestartSearchBeginsBehindTheLookAhead) {
    // FF 00 ends the search in failure, unless a reader has already taken it for data: the fast one
    // has read 6 bytes, the plain one 4, when the first block of 12 bits is done.
    for (const auto& [path, lookAhead] : {std::pair{JpegPath::Fast, 6}, {JpegPath::Plain, 4}}) {
        for (int position = 2; position <= 7; ++position) {
            Builder stream = GrayHead(16, 8, 1);
            FlatBlock(stream.Sos({{1}}), 0).Flush();
            stream.Raw(Bytes(static_cast<std::size_t>(position - 2))).Raw({0xFF, 0x00});
            FlatBlock(stream.Marker(0xD0), 0).Flush().Eoi();
            EXPECT_EQ(Decode(stream.Take(), path).error, position < lookAhead ? 0 : -228)
                << position;
        }
    }
}

TEST(EntropyTest, RestartSearchEndsAfter1536Bytes) {
    // The data is 2 bytes, of the zeros behind it the readers have taken 4 and 2, and the marker
    // takes 2 of the 1536.
    for (const auto& [path, most] : {std::pair{JpegPath::Fast, 1538}, {JpegPath::Plain, 1536}}) {
        for (const int zeros : {most, most + 1}) {
            Builder stream = GrayHead(16, 8, 1);
            FlatBlock(stream.Sos({{1}}), 0).Flush().Raw(Bytes(static_cast<std::size_t>(zeros)));
            FlatBlock(stream.Marker(0xD0), 0).Flush().Eoi();
            EXPECT_EQ(Decode(stream.Take(), path).error, zeros == most ? 0 : -228) << zeros;
        }
    }
}

// The DC values of blocks gray blocks that are decoded from the bits of bytes, over and over,
// with the tables of GrayHead: a code that isn't in a table is its symbol 0.
std::vector<int> DcOfFiller(const Bytes& bytes, int blocks) {
    std::size_t position = 0;
    const auto read = [&](int count) {
        int value = 0;
        for (; count > 0; --count, ++position) {
            const int byte = bytes[position / 8 % bytes.size()];
            value = value << 1 | (byte >> (7 - position % 8) & 1);
        }
        return value;
    };
    std::vector<int> values;
    int dc = 0;
    for (int block = 0; block < blocks; ++block) {
        const int code = read(4);
        const int size = code < 12 ? code : 0;
        const int bits = read(size);
        if (size > 0) dc += bits < 1 << (size - 1) ? bits - (1 << size) + 1 : bits;
        values.push_back(dc);
        EXPECT_GE(read(8), static_cast<int>(kAcSymbols.size())) << "not a code";
    }
    return values;
}

TEST(EntropyTest, EndOfDataReadsAsFiller) {
    constexpr int kBlocks = 30;
    const Bytes ended = GrayHead(8 * kBlocks, 8).Sos({{1}}).Take();
    Bytes endedInFf = ended, endedInMarker = ended;
    endedInFf.push_back(0xFF);
    endedInMarker.insert(endedInMarker.end(), {0xFF, 0xD9});
    const struct {
        const char* name;
        const Bytes& jpeg;
        Bytes filler;
    } cases[] = {{"end of data", ended, {0xFF, 0xD9}},
                 {"end of data behind FF", endedInFf, {0xFF}},
                 {"marker", endedInMarker, {0xFF}}};
    for (const auto& [name, jpeg, filler] : cases) {
        const std::vector<int> expected = DcOfFiller(filler, kBlocks);
        const Decoded fast = Decode(jpeg, JpegPath::Fast);
        const Decoded plain = Decode(jpeg, JpegPath::Plain);
        ASSERT_EQ(fast.result + plain.result, 2) << name;
        EXPECT_EQ(fast.error, 0) << name;
        EXPECT_EQ(plain.error, 0) << name;
        for (std::size_t i = 0; i < kBlocks; ++i) {
            EXPECT_EQ(fast.picture.rgb[i * 24], std::clamp((expected[i] >> 3) + 128, 0, 255))
                << name;
            EXPECT_EQ(plain.picture.rgb[i * 24], std::clamp(((expected[i] + 4) >> 3) + 128, 0, 255))
                << name;
        }
    }
}

TEST(LifecycleTest, OperationsAnswerInEveryState) {
    const Bytes jpeg = EncodeJpeg(MakePhotograph(100, 20), {});
    MemoryJpegSource source(jpeg.data(), jpeg.size());
    JpegDecoder decoder(&source, JpegPath::Fast);
    const std::uint8_t* row = nullptr;
    int rowBytes = 0;
    EXPECT_EQ(decoder.ReadScanline(&row, &rowBytes), -1) << "not started";
    EXPECT_EQ(decoder.StartDecompress(), 0);
    EXPECT_EQ(decoder.StartDecompress(), 0);
    EXPECT_EQ(decoder.GetWidth(), 100);
    EXPECT_EQ(decoder.GetHeight(), 20);
    EXPECT_EQ(decoder.GetComponents(), 3);
    EXPECT_EQ(decoder.GetBytesPerPixel(), 4);
    const std::uint8_t* buffers[2] = {};
    for (int y = 0; y < 20; ++y) {
        ASSERT_EQ(decoder.ReadScanline(&row, &rowBytes), 0);
        EXPECT_EQ(rowBytes, 400);
        if (y < 2) buffers[y] = row;
        EXPECT_EQ(row, buffers[y % 2]) << "rows come in pairs";
    }
    EXPECT_NE(buffers[0], buffers[1]);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(decoder.ReadScanline(&row, &rowBytes), 1);
    EXPECT_EQ(decoder.GetError(), 0);
}

TEST(LifecycleTest, GrayRowsHaveOneByteAPixel) {
    const Bytes jpeg = EncodeJpeg(MakePhotograph(17, 9), {.gray = true});
    MemoryJpegSource source(jpeg.data(), jpeg.size());
    JpegDecoder decoder(&source, JpegPath::Fast);
    ASSERT_EQ(decoder.StartDecompress(), 0);
    EXPECT_EQ(decoder.GetComponents(), 1);
    EXPECT_EQ(decoder.GetBytesPerPixel(), 1);
    const std::uint8_t* row = nullptr;
    int rowBytes = 0;
    ASSERT_EQ(decoder.ReadScanline(&row, &rowBytes), 0);
    EXPECT_EQ(rowBytes, 17);
}

}  // namespace
}  // namespace marvolen::test

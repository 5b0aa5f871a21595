// One stream for every error code that a stream can reach, and where it shows: in the constructor,
// in StartDecompress, or with the rows.

#include "jpeg/jpeg_decoder.h"
#include "jpeg/memory_jpeg_source.h"
#include "tests/jpeg/decoding.h"
#include "tests/jpeg/stream_builder.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace marvolen::test {
namespace {

using Builder = StreamBuilder;

enum class Stage { Construct, Start, Rows };

struct Case {
    const char* name;
    Stage stage;
    int error;
    Bytes jpeg;
};

void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.name;
}

const std::vector<Builder::Component> kGray = {{1, 0x11}};

Builder Soi() {
    return Builder().Soi();
}

// A segment in front of a sound picture.
Bytes Before(int marker, const Bytes& payload, int lengthError = 0) {
    return Soi().Segment(marker, payload, lengthError).Raw(GrayHead(8, 8).Take()).Take();
}

Bytes Frame(const std::vector<Builder::Component>& components) {
    return Soi().Dqt().Sof(0xC0, 16, 16, components).Sos({{1}}).Take();
}

// A gray 8 x 8 picture with the given scan header and no data.
Bytes Scan(const std::vector<Builder::ScanComponent>& components,
           Builder::ScanParameters parameters, int sof, int lengthError = 0) {
    return GrayHead(8, 8, 0, sof).Sos(components, parameters, lengthError).Take();
}

// A gray 8 x 8 block with these bits behind the DC difference.
Bytes Coded(int sof, Builder::ScanParameters parameters, const std::vector<int>& codes) {
    Builder stream = GrayHead(8, 8, 0, sof);
    stream.Sos({{1}}, parameters);
    if (parameters.spectralStart == 0) stream.Dc(0);
    for (const int code : codes) stream.Bits(code, 8);
    return stream.Eoi().Take();
}

std::vector<Case> HeaderCases() {
    const Bytes threeCodesOfOneBit = Builder::HuffmanTable(0, {3}, {1, 2, 3});
    const Bytes tooMany = Builder::HuffmanTable(0, {0, 0, 0, 0, 0, 0, 0, 0, 255, 1}, Bytes(256));
    const Bytes shortQuant = {0, 1, 2, 3};
    const auto sized = [](int width, int height) {
        return Soi().Sof(0xC0, width, height, kGray).Take();
    };
    const std::vector<Builder::Component> five(5, {1, 0x11});
    return {
        {"TooManyCodes", Stage::Construct, -200, Before(0xC4, tooMany)},
        {"OverSubscribed", Stage::Construct, -200, Before(0xC4, threeCodesOfOneBit)},
        {"HuffmanSlot", Stage::Construct, -201, Before(0xC4, Builder::DcTable(8))},
        {"HuffmanSlotOfAc", Stage::Construct, -201, Before(0xC4, Builder::DcTable(0x14))},
        {"HuffmanLength", Stage::Construct, -202, Before(0xC4, {}, -1)},
        {"HuffmanShort", Stage::Construct, -202, Before(0xC4, Builder::DcTable(), -1)},
        {"QuantLength", Stage::Construct, -203, Before(0xDB, {}, -1)},
        {"QuantNumber", Stage::Construct, -204, Before(0xDB, Builder::QuantTable(4, 1))},
        {"Precision12", Stage::Construct, -205, Soi().Sof(0xC1, 8, 8, kGray, 12).Take()},
        {"HeightZero", Stage::Construct, -206, sized(8, 0)},
        {"Height8193", Stage::Construct, -206, sized(8, 8193)},
        {"WidthZero", Stage::Construct, -207, sized(0, 8)},
        {"Width8193", Stage::Construct, -207, sized(8193, 8)},
        {"FiveComponents", Stage::Construct, -208, Soi().Sof(0xC0, 8, 8, five).Take()},
        {"FrameLength", Stage::Construct, -209, Soi().Sof(0xC0, 8, 8, kGray, 8, 1).Take()},
        {"SegmentLength1", Stage::Construct, -210, Before(0xE0, {}, -1)},
        {"SegmentLength0", Stage::Construct, -210, Before(0xFE, {}, -2)},
        {"RestartLength", Stage::Construct, -211, Before(0xDD, {0, 0, 0})},
        {"ArithmeticTables", Stage::Construct, -215, Before(0xCC, {0})},
        {"ArithmeticFrame", Stage::Construct, -215, Soi().Sof(0xC9, 8, 8, kGray).Take()},
        {"Tem", Stage::Construct, -216, Soi().Marker(0x01).Take()},
        {"Jpg", Stage::Construct, -216, Soi().Marker(0xC8).Take()},
        {"RestartMarkerOutside", Stage::Construct, -216, Soi().Marker(0xD3).Take()},
        {"Empty", Stage::Construct, -217, {}},
        {"NoStartOfImage", Stage::Construct, -217, Bytes(5000, 0x41)},
        {"ChanceStartOfImage", Stage::Construct, -217,
         Builder().Raw({0x41}).Soi().Raw({0x41}).Take()},
        {"Lossless", Stage::Construct, -218, Soi().Sof(0xC3, 8, 8, kGray).Take()},
        {"Hierarchical", Stage::Construct, -218, Soi().Sof(0xC5, 8, 8, kGray).Take()},
        {"ArithmeticProgressive", Stage::Construct, -218, Soi().Sof(0xCA, 8, 8, kGray).Take()},
        {"SecondSoi", Stage::Construct, -218, Soi().Soi().Take()},
        {"NoFrame", Stage::Construct, -218, Soi().Eoi().Take()},
        {"NothingAfterSoi", Stage::Construct, -218, Soi().Take()},
        {"ScanFirst", Stage::Construct, -218, Soi().Sos({{1}}).Take()},
        {"QuantShort", Stage::Construct, -219, Before(0xDB, shortQuant)},
        {"QuantShortByOne", Stage::Construct, -219,
         Before(0xDB, Builder::QuantTable(0, 1, 16), -1)},
    };
}

std::vector<Case> FrameCases() {
    const std::vector<Builder::Component> four(4, {1, 0x11});
    const auto colourScan = [](const std::vector<Builder::ScanComponent>& components) {
        return Soi()
            .Dqt()
            .Sof(0xC0, 8, 8, {{1, 0x11}, {2, 0x11}, {3, 0x11}})
            .Sos(components)
            .Take();
    };
    return {
        {"NoComponents", Stage::Start, -225, Frame({})},
        {"TwoComponents", Stage::Start, -225, Frame({{1, 0x11}, {2, 0x11}})},
        {"FourComponents", Stage::Start, -225, Frame(four)},
        {"FourProgressive", Stage::Start, -225, Soi().Dqt().Sof(0xC2, 8, 8, four).Take()},
        {"Luma4x1", Stage::Start, -226, Frame({{1, 0x41}, {2, 0x11}, {3, 0x11}})},
        {"Luma0x0", Stage::Start, -226, Frame({{1, 0x00}, {2, 0x11}, {3, 0x11}})},
        {"Chroma2x1", Stage::Start, -226, Frame({{1, 0x22}, {2, 0x21}, {3, 0x11}})},
        {"Chroma1x2", Stage::Start, -226, Frame({{1, 0x22}, {2, 0x11}, {3, 0x12}})},
        {"ScanLength", Stage::Start, -212, Scan({{1}}, {}, 0xC0, 2)},
        {"NoScanComponents", Stage::Start, -212, Scan({}, {}, 0xC0)},
        {"FiveScanComponents", Stage::Start, -212, Scan({{1}, {1}, {1}, {1}, {1}}, {}, 0xC0)},
        {"ScanComponent", Stage::Start, -213, Scan({{2}}, {}, 0xC0)},
        {"ScanOutOfOrder", Stage::Start, -225, colourScan({{2}, {1}, {3}})},
        {"ScanTwiceTheSame", Stage::Start, -225, colourScan({{1}, {2}, {2}})},
        {"ScanIncomplete", Stage::Start, -225, colourScan({{1}, {2}})},
        {"EoiBeforeScan", Stage::Start, -216, GrayHead(8, 8).Eoi().Take()},
        {"SecondFrame", Stage::Start, -216, GrayHead(8, 8).Sof(0xC0, 8, 8, kGray).Take()},
        {"EndBeforeScan", Stage::Start, -216, GrayHead(8, 8).Take()},
        {"NoQuantTable", Stage::Start, -222,
         Soi()
             .Dht(Builder::DcTable())
             .Dht(Builder::AcTable({0}))
             .Sof(0xC0, 8, 8, kGray)
             .Sos({{1}})
             .Take()},
        {"QuantTable200", Stage::Start, -222,
         Soi()
             .Dqt()
             .Dht(Builder::DcTable())
             .Dht(Builder::AcTable({0}))
             .Sof(0xC0, 8, 8, {{1, 0x11, 200}})
             .Sos({{1}})
             .Take()},
        {"NoTableAtAll", Stage::Start, -223, Soi().Sof(0xC0, 8, 8, kGray).Sos({{1}}).Take()},
        {"NoDcTable", Stage::Start, -223, Scan({{1, 0x10}}, {}, 0xC0)},
        {"NoAcTable", Stage::Start, -223, Scan({{1, 0x03}}, {}, 0xC0)},
        {"NoAcTableForTheBandThatASequentialScanIgnores", Stage::Start, -223,
         Scan({{1, 0x03}}, {5, 0, 0x21}, 0xC0)},
        {"DcSelector4IsNoAcTable", Stage::Start, -223, Scan({{1, 0x40}}, {}, 0xC0)},
        {"AcSelector4", Stage::Start, -223, Scan({{1, 0x04}}, {}, 0xC0)},
        {"ProgressiveNoDcTable", Stage::Start, -223, Scan({{1, 0x20}}, {0, 0, 0}, 0xC2)},
    };
}

std::vector<Case> DataCases() {
    const std::vector<Builder::Component> wide = {{1, 0x22}, {2, 0x11}, {3, 0x11}};
    const Bytes bigDc = Builder::HuffmanTable(0, {0, 0, 0, 1}, {16});
    const auto withBigDc = [&](int sof, Builder::ScanParameters parameters) {
        return Soi()
            .Dqt()
            .Dht(bigDc)
            .Dht(Builder::AcTable({0}))
            .Sof(sof, 8, 8, kGray)
            .Sos({{1}}, parameters)
            .Bits(0, 8)
            .Take();
    };
    // 200 KB that would make the decoder visit 21,000,000,000 blocks.
    Builder emptyScans = GrayHead(8192, 8192, 0, 0xC2);
    for (int i = 0; i < 20000; ++i) emptyScans.Sos({{1}}, {1, 63, 0});
    return {
        {"ZrlAt49", Stage::Rows, -227, Coded(0xC0, {}, {kZrl, kZrl, kZrl, kZrl, kEob})},
        {"RunBeyondTheBlock", Stage::Rows, -227,
         Coded(0xC0, {}, {kZrl, kZrl, kZrl, kOneAfter15, 0xFF})},
        {"DcSize16", Stage::Rows, -227, withBigDc(0xC0, {})},
        {"TrailingMarker", Stage::Rows, -216,
         GrayHead(8, 8).Sos({{1}}).Dc(0).Bits(kEob, 8).Flush().Marker(0xD0).Take()},
        {"NoRestart", Stage::Rows, -228,
         GrayHead(16, 8, 1).Sos({{1}}).Dc(0).Bits(kEob, 8).Flush().Raw(Bytes(2000)).Eoi().Take()},
        {"RestartAtEnd", Stage::Rows, -228,
         GrayHead(16, 8, 1).Sos({{1}}).Dc(0).Bits(kEob, 8).Take()},
        {"WrongRestart", Stage::Rows, -228,
         GrayHead(24, 8, 1)
             .Sos({{1}})
             .Dc(0)
             .Bits(kEob, 8)
             .Flush()
             .Marker(0xD0)
             .Dc(0)
             .Bits(kEob, 8)
             .Flush()
             .Marker(0xD2)
             .Take()},
        {"ProgressiveDcSize16", Stage::Start, -227, withBigDc(0xC2, {0, 0, 0})},
        {"ProgressiveZrlAt49", Stage::Start, -227,
         Coded(0xC2, {1, 63, 0}, {kZrl, kZrl, kZrl, kZrl, kEob})},
        {"ProgressiveRunBeyond", Stage::Start, -227, Coded(0xC2, {60, 63, 0}, {kOneAfter14, 0xFF})},
        {"RefinementSize2", Stage::Start, -227,
         Soi()
             .Dqt()
             .Dht(Builder::AcTable({0x02}))
             .Sof(0xC2, 8, 8, kGray)
             .Sos({{1}}, {1, 63, 0x10})
             .Bits(0, 16)
             .Take()},
        {"RefinementBeyond", Stage::Start, -227, Coded(0xC2, {60, 63, 0x10}, {kOneAfter14, 0xFF})},
        {"ProgressiveWrongRestart", Stage::Start, -228,
         GrayHead(16, 8, 1, 0xC2).Sos({{1}}, {0, 0, 0}).Dc(0).Flush().Marker(0xD1).Dc(0).Take()},
        {"BandReversed", Stage::Start, -230, Scan({{1}}, {5, 4, 0}, 0xC2)},
        {"BandBeyond63", Stage::Start, -230, Scan({{1}}, {1, 64, 0}, 0xC2)},
        {"DcAndAc", Stage::Start, -230, Scan({{1}}, {0, 63, 0}, 0xC2)},
        {"AcOfTwoComponents", Stage::Start, -230,
         Soi()
             .Dqt()
             .Dht(Builder::AcTable({0}))
             .Sof(0xC2, 8, 8, wide)
             .Sos({{1}, {2}}, {1, 63, 0})
             .Take()},
        {"RefinementBySteps", Stage::Start, -231, Scan({{1}}, {1, 63, 0x20}, 0xC2)},
        {"RefinementBackwards", Stage::Start, -231, Scan({{1}}, {0, 0, 0x12}, 0xC2)},
        {"SixteenBlocksAnMcu", Stage::Start, -212,
         Soi()
             .Dqt()
             .Dht(Builder::DcTable())
             .Sof(0xC2, 16, 16, wide)
             .Sos({{1}, {1}, {1}, {1}}, {0, 0, 0})
             .Take()},
        {"TwentyThousandEmptyScans", Stage::Start, -227, emptyScans.Take()},
        {"SecondProgressiveFrame", Stage::Start, -216,
         GrayHead(8, 8, 0, 0xC2).Sof(0xC2, 8, 8, kGray).Take()},
        {"UnusedComponentWithoutTable", Stage::Start, -222,
         Soi()
             .Dqt()
             .Dht(Builder::DcTable())
             .Sof(0xC2, 8, 8, {{1, 0x11}, {2, 0x11, 1}, {3, 0x11}})
             .Sos({{1}}, {0, 0, 0})
             .Dc(0)
             .Eoi()
             .Take()},
    };
}

class ErrorTest : public testing::TestWithParam<Case> {};

TEST_P(ErrorTest, ShowsWhereItBelongs) {
    const Case& expected = GetParam();
    for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
        SCOPED_TRACE(path == JpegPath::Fast ? "fast" : "plain");
        MemoryJpegSource source(expected.jpeg.data(), expected.jpeg.size());
        JpegDecoder decoder(&source, path);
        const std::uint8_t* row = nullptr;
        int rowBytes = 0;
        if (expected.stage == Stage::Construct) {
            EXPECT_EQ(decoder.GetError(), expected.error);
        } else {
            ASSERT_EQ(decoder.GetError(), 0);
        }
        if (expected.stage == Stage::Rows) {
            ASSERT_EQ(decoder.StartDecompress(), 0);
            EXPECT_EQ(decoder.ReadScanline(&row, &rowBytes), -227);
        } else {
            EXPECT_EQ(decoder.StartDecompress(), -1);
        }
        EXPECT_EQ(decoder.GetError(), expected.error);
        // A failed decoder stays failed.
        EXPECT_EQ(decoder.ReadScanline(&row, &rowBytes), -1);
        EXPECT_EQ(decoder.StartDecompress(), expected.stage == Stage::Rows ? 0 : -1);
        EXPECT_EQ(decoder.GetError(), expected.error);
        EXPECT_EQ(row, nullptr);
    }
    const Decoded decoded = Decode(expected.jpeg);
    EXPECT_EQ(decoded.result, expected.stage == Stage::Rows ? 1 : 0);
    EXPECT_EQ(decoded.error, expected.error);
}

const auto kName = [](const auto& testCase) { return testCase.param.name; };
INSTANTIATE_TEST_SUITE_P(Header, ErrorTest, testing::ValuesIn(HeaderCases()), kName);
INSTANTIATE_TEST_SUITE_P(Frame, ErrorTest, testing::ValuesIn(FrameCases()), kName);
INSTANTIATE_TEST_SUITE_P(Data, ErrorTest, testing::ValuesIn(DataCases()), kName);

// A source that fails after limit bytes, and hands out at most portion bytes a call.
class TestSource : public JpegSource {
public:
    TestSource(const Bytes& newBytes, std::size_t newLimit, int newPortion = 1 << 20)
        : bytes(newBytes), limit(newLimit), portion(newPortion) {}

    int Read(void* destination, int maxCount, bool* endOfData) override {
        if (position >= limit) return -1;
        const int left = static_cast<int>(std::min(limit, bytes.size()) - position);
        // Every other call brings nothing.
        const int count =
            portion < maxCount && ++calls % 2 == 0 ? 0 : std::min({maxCount, left, portion});
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(position), count,
                    static_cast<std::uint8_t*>(destination));
        position += static_cast<std::size_t>(count);
        *endOfData = *endOfData || position == bytes.size();
        return count;
    }
    void Begin() override { ++begun; }
    void End() override { ++ended; }

    int begun = 0;
    int ended = 0;

private:
    const Bytes& bytes;
    std::size_t limit;
    int portion;
    std::size_t position = 0;
    int calls = 0;
};

TEST(SourceTest, ReadFailureIsAnErrorAtEveryStage) {
    const Bytes jpeg = EncodeJpeg(MakePhotograph(704, 480), {});
    {
        TestSource unreadable(jpeg, 0);
        EXPECT_EQ(JpegDecoder(&unreadable, JpegPath::Fast).GetError(), -232);
        EXPECT_EQ(unreadable.ended, 1) << "by the constructor or the destructor, not both";
    }
    TestSource source(jpeg, 3 * 4096);
    {
        JpegDecoder decoder(&source, JpegPath::Fast);
        ASSERT_EQ(decoder.StartDecompress(), 0);
        const std::uint8_t* row = nullptr;
        int rowBytes = 0;
        int rows = 0;
        int result = 0;
        while ((result = decoder.ReadScanline(&row, &rowBytes)) == 0) ++rows;
        EXPECT_EQ(result, -227);
        EXPECT_EQ(decoder.GetError(), -232);
        EXPECT_GT(rows, 0);
        EXPECT_LT(rows, 480);
        EXPECT_EQ(source.ended, 1) << "released with the failure";
    }
    EXPECT_EQ(source.begun, 1);
    EXPECT_EQ(source.ended, 1);
    const Bytes progressive = EncodeJpeg(MakePhotograph(704, 480), {.progressive = true});
    TestSource cutShort(progressive, 2 * 4096);
    JpegDecoder decoder(&cutShort, JpegPath::Fast);
    EXPECT_EQ(decoder.StartDecompress(), -1);
    EXPECT_EQ(decoder.GetError(), -232);
}

TEST(SourceTest, MoreThanWasAskedForIsAReadError) {
    struct Generous : JpegSource {
        int Read(void*, int maxCount, bool*) override { return maxCount + 1; }
    } source;
    EXPECT_EQ(JpegDecoder(&source, JpegPath::Fast).GetError(), -232);
}

TEST(SourceTest, PortionsMakeNoDifference) {
    const Bytes jpeg = EncodeJpeg(MakePhotograph(353, 241), {.restartInterval = 5});
    const Picture whole = Decode(jpeg).picture;
    for (const int portion : {1, 7, 4095}) {
        TestSource source(jpeg, jpeg.size() + 1, portion);
        {
            JpegDecoder decoder(&source, JpegPath::Fast);
            ASSERT_EQ(decoder.StartDecompress(), 0);
            const std::uint8_t* row = nullptr;
            int rowBytes = 0;
            std::size_t position = 0;
            while (decoder.ReadScanline(&row, &rowBytes) == 0) {
                for (int x = 0; x < 353; ++x, position += 3) {
                    ASSERT_TRUE(
                        std::equal(row + 4 * x, row + 4 * x + 3,
                                   whole.rgb.begin() + static_cast<std::ptrdiff_t>(position)));
                    ASSERT_EQ(row[4 * x + 3], 0);
                }
            }
            EXPECT_EQ(position, whole.rgb.size());
            EXPECT_EQ(source.ended, 0);
        }
        EXPECT_EQ(source.ended, 1);
    }
}

TEST(AllocationTableTest, RefusesMoreThanItHolds) {
    AllocationTable table;
    for (std::size_t i = 0; i < AllocationTable::kSlots; ++i) {
        const std::uint8_t* block = table.AllocateArray<std::uint8_t>(i);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0U);
        EXPECT_TRUE(std::all_of(block, block + i + 8, [](int byte) { return byte == 0; }));
    }
    const auto codeOf = [&](std::size_t size) {
        try {
            table.Allocate(size);
        } catch (const JpegFailure& failure) {
            return static_cast<int>(failure.code);
        }
        return 0;
    };
    EXPECT_EQ(codeOf(1), -221);
    table.Release();
    EXPECT_EQ(codeOf(SIZE_MAX - 4), -233);
    EXPECT_EQ(codeOf(1), 0);
}

}  // namespace
}  // namespace marvolen::test

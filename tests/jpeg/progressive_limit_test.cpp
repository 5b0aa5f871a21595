// How far the scans of a progressive picture may go.

#include "jpeg/jpeg_decoder.h"
#include "jpeg/memory_jpeg_source.h"
#include "tests/jpeg/decoding.h"
#include "tests/jpeg/stream_builder.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

TEST(ProgressiveLimitTest, SixteenScansMayRunDry) {
    for (const int scans : {1, 16, 17}) {
        StreamBuilder stream = GrayHead(64, 64, 0, 0xC2);
        for (int i = 0; i < scans; ++i) stream.Sos({{1}}, {1, 63, 0});
        const Decoded cutOff = Decode(stream.Take());
        const Decoded ended = Decode(stream.Eoi().Take());
        EXPECT_EQ(cutOff.error, scans <= 16 ? 0 : -227) << scans;
        EXPECT_EQ(ended.error, scans <= 16 ? 0 : -227) << scans;
    }
}

TEST(ProgressiveLimitTest, LookingAheadIsNotRunningDry) {
    // One bit a restart interval: each leaves the reader three bytes of look-ahead to fill.
    StreamBuilder stream = GrayHead(64, 8, 1, 0xC2);
    for (int scan = 0; scan < 20; ++scan) {
        stream.Sos({{1}}, {0, 0, 0x10});
        for (int i = 0; i < 8; ++i) {
            stream.Bits(0, 1).Flush();
            if (i < 7) stream.Marker(0xD0 + i);
        }
    }
    EXPECT_EQ(Decode(stream.Eoi().Take()).error, 0);
}

TEST(ProgressiveLimitTest, ScansMayVisitTwoToThe26Blocks) {
    // Each scan is 64 end-of-band runs of 16,384 blocks.
    StreamBuilder stream = StreamBuilder().Soi().Dqt().Dht(StreamBuilder::AcTable({0xE0}));
    stream.Sof(0xC2, 8192, 8192, {{1, 0x11}});
    const auto addScan = [&] { stream.Sos({{1}}, {1, 63, 0}).Raw(Bytes(64 * (8 + 14) / 8)); };
    for (int i = 0; i < 64; ++i) addScan();
    const auto errorOf = [](const Bytes& jpeg) {
        MemoryJpegSource source(jpeg.data(), jpeg.size());
        JpegDecoder decoder(&source, JpegPath::Fast);
        decoder.StartDecompress();
        return decoder.GetError();
    };
    EXPECT_EQ(errorOf(stream.Take()), 0);
    addScan();
    EXPECT_EQ(errorOf(stream.Take()), -227);
}

}  // namespace
}  // namespace marvolen::test

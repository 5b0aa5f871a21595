// What the bit readers give, and when they refill: where the search for a restart marker begins.

#include "jpeg/fast_bit_reader.h"
#include "jpeg/memory_jpeg_source.h"
#include "jpeg/plain_bit_reader.h"
#include "tests/jpeg/corpus.h"

#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

// Consumes bits in steps of low to high and checks each against the data, and that as many bytes
// have been read as bytesTaken says of the bits consumed.
template <class Reader, class BytesTaken>
void CheckReader(int stuffed, int low, int high, BytesTaken bytesTaken) {
    // Bytes that tell their positions apart; every stuffedth one is FF, followed by a zero.
    Bytes data, raw;
    std::vector<std::size_t> rawPosition;  // by the position in data
    for (int i = 0; i < 600; ++i) {
        data.push_back(i % stuffed == stuffed - 1 ? 0xFF : static_cast<std::uint8_t>(i % 251));
        rawPosition.push_back(raw.size());
        raw.push_back(data.back());
        if (data.back() == 0xFF) raw.push_back(0);
    }
    std::mt19937 random(1);
    MemoryJpegSource source(raw.data(), raw.size());
    JpegInput input;
    input.Attach(&source);
    Reader reader(input);
    reader.PrimeForScan();
    for (int consumed = 0; consumed < 4000;) {
        SCOPED_TRACE(testing::Message() << consumed << " bits");
        const std::size_t next = rawPosition[static_cast<std::size_t>(bytesTaken(consumed))];
        ASSERT_EQ(input.ReadRaw(), raw[next]);
        ASSERT_EQ(input.ReadRaw(), raw[next + 1]);
        input.Unread(2);
        const auto at = static_cast<std::size_t>(consumed / 8);
        const int three = data[at] << 16 | data[at + 1] << 8 | data[at + 2];
        const auto sixteen = static_cast<std::uint32_t>(three << consumed % 8 >> 8 & 0xFFFF);
        ASSERT_EQ(reader.Peek16(), sixteen);
        const int count = low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
        ASSERT_EQ(reader.ReadBits(count), sixteen >> (16 - count));
        consumed += count;
    }
}

template <class Reader, class BytesTaken>
void CheckSteps(BytesTaken bytesTaken) {
    for (const int stuffed : {5, 50, 1000}) {
        CheckReader<Reader>(stuffed, 1, 1, bytesTaken);
        CheckReader<Reader>(stuffed, 16, 16, bytesTaken);
        CheckReader<Reader>(stuffed, 1, 16, bytesTaken);
    }
}

TEST(BitReaderTest, RefillsWhen16BitsAreLeft) {
    CheckSteps<FastBitReader>([](int bits) { return 6 + 6 * ((bits + 16) / 48); });
    CheckSteps<PlainBitReader>([](int bits) { return 4 + 2 * (bits / 16); });
}

}  // namespace
}  // namespace marvolen::test

#include "tools/camera_server/camera_answer.h"

#include "tests/tools/camera_client.h"
#include "tools/camera_server/pattern_pictures.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using test::BytesOf;
using test::PicturesIn;
using test::ReceivedPicture;
using test::TimeOf;

constexpr PictureStamp kStamp{.year = 2003,
                              .month = 1,
                              .day = 15,
                              .hour = 12,
                              .minute = 30,
                              .second = 45,
                              .hundredths = 50,
                              .counter = 0};

std::string Wire(const AnswerPart& part) {
    return part.before + BytesOf(*part.picture) + part.after;
}

// A stream of parts under a fault, and what a receiver makes of it.
struct FaultyStream {
    explicit FaultyStream(const Fault& fault, int count = 12) : answer(StreamHead()) {
        PatternPictures source(900, 40);
        for (int n = 1; n <= count; ++n) {
            const PicturePtr picture = source.At({}, static_cast<std::uint64_t>(n));
            PictureStamp stamp = kStamp;
            stamp.counter = static_cast<std::uint32_t>(n);
            original.push_back(picture);
            parts.push_back(MakeStreamPart(fault, static_cast<std::uint64_t>(n), picture, stamp));
            answer += Wire(parts.back());
        }
        pictures = PicturesIn(answer);
    }

    std::string answer;
    std::vector<PicturePtr> original;
    std::vector<AnswerPart> parts;
    std::vector<ReceivedPicture> pictures;
};

TEST(CameraAnswerTest, APartIsByteForByteWhatReceiversExpect) {
    EXPECT_EQ(StampLine(kStamp), "Stamp: 7d3010f 0c1e2d 32 0\n\n");
    const AnswerPart part = MakeStreamPart({}, 1, MakePicture({0xFF, 0xD8, 0xFF, 0xD9}), kStamp);
    EXPECT_EQ(Wire(part),
              "Content-Type: image/jpeg\r\nStamp: 7d3010f 0c1e2d 32 0\n\n\xFF\xD8\xFF\xD9"
              "\r\n--myboundary\r\n");
    const std::string head = StreamHead();
    EXPECT_EQ(head.find("HTTP/1.0 200 OK\r\n"), 0U);
    const std::string_view type =
        "\r\nContent-Type: multipart/x-mixed-replace;boundary=--myboundary\r\n";
    ASSERT_NE(head.find(type), std::string::npos);
    EXPECT_EQ(head.find("Content-Type: "), head.find(type) + 2);
    EXPECT_TRUE(head.ends_with("\r\n\r\n--myboundary\r\n"));
}

TEST(CameraAnswerTest, AHealthyStreamArrivesWholeWithItsStamps) {
    const FaultyStream stream({});
    ASSERT_EQ(stream.pictures.size(), stream.original.size());
    for (std::size_t i = 0; i < stream.pictures.size(); ++i) {
        EXPECT_EQ(stream.pictures[i].bytes, BytesOf(*stream.original[i]));
        EXPECT_EQ(stream.pictures[i].time, TimeOf(kStamp));
    }
}

TEST(CameraAnswerTest, TheSingleFormIsOnePictureWithoutTime) {
    const PicturePtr picture = PatternPictures(900).At({}, 0);
    const auto pictures =
        PicturesIn(Wire(MakeSinglePart({}, picture)) + "trailing\xFF\xD8\xFF\xD9");
    ASSERT_EQ(pictures.size(), 1U);
    EXPECT_EQ(pictures[0].bytes, BytesOf(*picture));
    EXPECT_FALSE(pictures[0].hasTime);
}

TEST(CameraAnswerTest, GarbageBetweenPartsCostsNoPicture) {
    const FaultyStream stream(MakeFault(FaultKind::Garbage));
    ASSERT_EQ(stream.pictures.size(), stream.original.size());
    std::set<std::string> garbage;
    for (std::size_t i = 0; i < stream.pictures.size(); ++i) {
        EXPECT_EQ(stream.pictures[i].bytes, BytesOf(*stream.original[i]));
        EXPECT_GT(stream.parts[i].after.size(), 64U);
        garbage.insert(stream.parts[i].after);
    }
    EXPECT_EQ(garbage.size(), stream.parts.size());
}

TEST(CameraAnswerTest, APartWithoutStampIsLostAlone) {
    const FaultyStream stream({FaultKind::NoStamp, 3});
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < stream.original.size(); ++i) {
        EXPECT_EQ(stream.parts[i].stamped, (i + 1) % 3 != 0);
        if (stream.parts[i].stamped) expected.push_back(BytesOf(*stream.original[i]));
    }
    ASSERT_EQ(stream.pictures.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(stream.pictures[i].bytes, expected[i]);
    }
    EXPECT_TRUE(FaultyStream({FaultKind::NoStamp, 1}).pictures.empty());
}

TEST(CameraAnswerTest, AStampThatJumpsBackIsAnHourEarlyAndSaysSo) {
    const FaultyStream stream({FaultKind::StampBack, 4});
    for (std::size_t i = 0; i < stream.pictures.size(); ++i) {
        EXPECT_EQ(stream.pictures[i].time.hour, (i + 1) % 4 == 0 ? 11 : 12);
        EXPECT_EQ(stream.pictures[i].time, TimeOf(stream.parts[i].stamp));
    }
    PictureStamp midnight = kStamp;
    midnight.hour = 0;
    EXPECT_NE(StampJumpedBack(midnight).hour, midnight.hour);
}

TEST(CameraAnswerTest, AnOversizedPictureIsAJpegTooLargeForAnyReceiver) {
    const FaultyStream stream({FaultKind::Oversize, 3}, 7);
    for (std::size_t i = 0; i < stream.parts.size(); ++i) {
        const std::vector<std::uint8_t>& sent = stream.parts[i].picture->jpeg;
        const std::vector<std::uint8_t>& original = stream.original[i]->jpeg;
        if ((i + 1) % 3 != 0) {
            EXPECT_EQ(sent, original);
            continue;
        }
        EXPECT_GT(sent.size(), kOversizeBytes);
        // Comment segments lead exactly to where the picture goes on.
        std::size_t at = 2;
        while (sent[at] == 0xFF && sent[at + 1] == 0xFE) {
            at += 2U + sent[at + 2] * 256U + sent[at + 3];
            ASSERT_LT(at + 1, sent.size());
        }
        EXPECT_TRUE(std::equal(sent.begin() + static_cast<std::ptrdiff_t>(at), sent.end(),
                               original.begin() + 2, original.end()));
    }
    EXPECT_EQ(stream.pictures.size(), 5U);
}

TEST(CameraAnswerTest, DamagedPicturesArriveAsDamaged) {
    const FaultyStream halves({FaultKind::Truncate, 2});
    const FaultyStream flipped({FaultKind::BitFlip, 2});
    for (std::size_t i = 0; i < halves.original.size(); ++i) {
        const std::vector<std::uint8_t>& original = halves.original[i]->jpeg;
        const bool struck = (i + 1) % 2 == 0;
        EXPECT_EQ(halves.pictures.at(i).bytes.size(),
                  struck ? original.size() / 2 : original.size());
        EXPECT_EQ(halves.pictures[i].bytes, BytesOf(*halves.parts[i].picture));

        const std::vector<std::uint8_t>& sent = flipped.parts[i].picture->jpeg;
        ASSERT_EQ(sent.size(), original.size());
        int bits = 0;
        for (std::size_t k = 0; k < sent.size(); ++k) {
            bits += std::popcount(static_cast<unsigned>(sent[k] ^ original[k]));
        }
        EXPECT_LE(bits, 16);
        EXPECT_EQ(bits > 0, struck);
        EXPECT_EQ(sent[0] * 256 + sent[1], 0xFFD8);
        EXPECT_EQ(flipped.parts[i].picture->hash, HashBytes(sent.data(), sent.size()));
    }
}

TEST(CameraAnswerTest, TextAnswersHoldNoPicture) {
    for (const int status : {200, 400, 401, 404, 405}) {
        const std::string answer = TextAnswer(status);
        EXPECT_EQ(answer.find("HTTP/1.0 " + std::to_string(status) + ' '), 0U);
        EXPECT_NE(answer.find("\r\nContent-Type: text/html\r\n"), std::string::npos);
        EXPECT_EQ(answer.find("WWW-Authenticate") != std::string::npos, status == 401);
        EXPECT_TRUE(PicturesIn(answer).empty());
    }
}

TEST(FaultTest, TextsReadBackAndNonsenseIsRefused) {
    for (const char* text : {"none", "refuse", "silent", "close", "close-after:0", "stall-after:7",
                             "trickle:100", "garbage", "no-stamp:1", "stamp-back:2", "oversize:5",
                             "truncate:6", "bit-flip:8", "content-type"}) {
        const auto fault = ParseFault(text);
        ASSERT_TRUE(fault.has_value()) << text;
        EXPECT_EQ(FaultText(*fault), text);
        EXPECT_NE(FaultHelp().find("  " + std::string(text).substr(0, std::string(text).find(':'))),
                  std::string::npos);
    }
    EXPECT_EQ(ParseFault("close-after"), MakeFault(FaultKind::CloseAfter));
    EXPECT_EQ(MakeFault(FaultKind::CloseAfter).count, 20U);
    for (const char* text : {"", "nonsense", "close:3", "trickle:0", "bit-flip:0", "close-after:",
                             "close-after:x", "close-after:-1", "close-after:99999999999"}) {
        EXPECT_FALSE(ParseFault(text).has_value()) << text;
    }
}

}  // namespace
}  // namespace marvolen

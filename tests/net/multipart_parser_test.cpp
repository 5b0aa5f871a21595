#include "net/multipart_parser.h"

#include "net/frame_pool.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

using namespace std::string_literals;

struct Picture {
    std::string bytes;
    std::optional<SYSTEMTIME> time;
    bool operator==(const Picture&) const = default;
};

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.bytes.size() << " bytes " << ::testing::PrintToString(picture.bytes) << " at "
         << (picture.time ? FormatTime(*picture.time) : "no time");
}

using Pictures = std::vector<Picture>;
using Sizes = std::vector<std::size_t>;  // of the pieces that a stream is fed in

constexpr std::string_view kStreamHead =
    "HTTP/1.0 200 OK\r\nServer: none\r\n"
    "Content-Type: multipart/x-mixed-replace;boundary=--myboundary\r\n\r\n--myboundary\r\n";
constexpr std::string_view kJpegHead = "HTTP/1.0 200 OK\r\nContent-Type: image/jpeg\r\n\r\n";
constexpr SYSTEMTIME kTime{2003, 1, 0, 15, 12, 30, 45, 500};
constexpr std::string_view kStamp = " 7d3010f 0c1e2d 32 0";  // kTime

std::string Part(std::string_view stamp, std::string_view picture) {
    return "Content-Type: image/jpeg\r\nStamp:" + std::string(stamp) + "\n\n" +
           std::string(picture) + "\r\n--myboundary\r\n";
}
std::string Part(std::string_view picture) {
    return Part(kStamp, picture);
}
std::string Stream(std::string_view parts) {
    return std::string(kStreamHead) + std::string(parts);
}
std::string Jpeg(std::size_t size, char fill) {
    return "\xFF\xD8" + std::string(size, fill) + "\xFF\xD9";
}

class MultipartParserTest : public ::testing::Test {
protected:
    std::uint32_t capacity = 400;

    // The pictures in a stream that arrives in pieces of the given sizes, the rest in one. Every
    // piece stands alone on the heap, where a sanitizer sees any look beyond it.
    Pictures Parse(std::string_view stream, const Sizes& sizes) const {
        Receiver receiver;
        EXPECT_TRUE(receiver.pool.Init(capacity, 2));
        receiver.parser.Init(receiver.pool.Acquire(),
                             [&](FramePtr frame) { receiver.OnPicture(std::move(frame)); });
        const auto feed = [&](std::size_t size) {
            const std::vector<std::uint8_t> piece(stream.begin(),
                                                  stream.begin() + static_cast<long>(size));
            receiver.parser.Feed(piece);
            stream.remove_prefix(size);
        };
        for (const std::size_t size : sizes) feed(std::min(size, stream.size()));
        feed(stream.size());
        return receiver.pictures;
    }

    // The stream gives these pictures however it is cut.
    void Expect(std::string_view stream, const Pictures& expected) const {
        ASSERT_EQ(Parse(stream, {}), expected);
        ASSERT_EQ(Parse(stream, Sizes(stream.size(), 1)), expected) << "byte by byte";
        for (std::size_t cut = 1; cut < stream.size(); ++cut) {
            ASSERT_EQ(Parse(stream, {cut}), expected) << "cut at " << cut;
        }
        std::mt19937 random(1);
        for (unsigned round = 0; round < 50; ++round) {
            Sizes sizes(stream.size());
            for (std::size_t& size : sizes) size = random() % (round + 2);
            ASSERT_EQ(Parse(stream, sizes), expected) << "random cuts, round " << round;
        }
    }

private:
    struct Receiver {
        FramePool pool;
        MultipartParser parser;
        Pictures pictures;

        void OnPicture(FramePtr frame) {
            const auto bytes = frame->Picture();
            Picture picture{{bytes.begin(), bytes.end()}, {}};
            if (frame->Time() != nullptr) picture.time = *frame->Time();
            pictures.push_back(std::move(picture));
            parser.SetBuffer(pool.Acquire());
        }
    };
};

TEST_F(MultipartParserTest, StreamOfPictures) {
    Expect(Stream(Part(Jpeg(20, 'a')) + Part(" 7d40c1f 173b3b 63 ffffffff", Jpeg(0, 'b')) +
                  Part(Jpeg(50, '-'))),
           {{Jpeg(20, 'a'), kTime},
            {Jpeg(0, 'b'), SYSTEMTIME{2004, 12, 0, 31, 23, 59, 59, 990}},
            {Jpeg(50, '-'), kTime}});
    const std::string tricky = "--myboundarStamp:\n\nContent-Type: \r\n\r\n-"s + "\0\xFF\xD9-"s;
    Expect(Stream(Part(tricky) + Part("x")), {{tricky, kTime}, {"x", kTime}});
    Expect(
        Stream("Stamp:" + std::string(kStamp) + "\r\n\r\nstill stamp\n\npicture\r\n--myboundary"),
        {{"picture", kTime}});
}

TEST_F(MultipartParserTest, SinglePicture) {
    const std::string picture = "\xFF\xD8 between \xFF\xFF\xD9";
    Expect(std::string(kJpegHead) + "junk \xFF\xFF" + picture + Jpeg(3, 'x') + Part("y"),
           {{picture, std::nullopt}});
    Expect("Content-Type: image/jpegxyz; q=1\r\n" + Jpeg(1, 'p'), {{Jpeg(1, 'p'), std::nullopt}});
    Expect(std::string(kJpegHead) + "no start of a picture", {});
    Expect(std::string(kJpegHead) + "\xFF\xD8 no end", {});
}

TEST_F(MultipartParserTest, OtherContentTypesGiveNothing) {
    const std::string parts = Part(Jpeg(5, 'a'));
    for (const std::string_view type : {"text/html", "", "image/jpe", "IMAGE/JPEG", " image/jpeg",
                                        "multipart/x-mixed-replace;boundary=--myboundar",
                                        "multipart/x-mixed-replace; boundary=--myboundary"}) {
        Expect("Content-Type: " + std::string(type) + "\r\n\r\n" + parts, {});
    }
    Expect("content-type: image/jpeg\r\n" + Jpeg(5, 'a'), {});
    Expect("content-type: x\r\nContent-Type: image/jpeg\r\n" + Jpeg(5, 'a'),
           {{Jpeg(5, 'a'), std::nullopt}});
    Expect("Content-Type: multipart/x-mixed-replace;boundary=--myboundary-and-more\r\n" + parts,
           {{Jpeg(5, 'a'), kTime}});
}

TEST_F(MultipartParserTest, WhatStandsBetweenBoundaryAndStampIsSkipped) {
    const std::string good = Part("good");
    Expect(Stream("garbage \xFF\xD8\xFF\xD9 \r\n\r\n" + good), {{"good", kTime}});
    Expect(
        Stream("Content-Type: text/plain\r\n\r\nno stamp here\r\n--myboundary\r\n" + good + good),
        {{"good", kTime}, {"good", kTime}});
    Expect(Stream("StStamp: 1 2 3 4\n\nlost?\r\n--myboundary" + good),
           {{"lost?", SYSTEMTIME{0, 0, 0, 1, 0, 0, 2, 30}}, {"good", kTime}});
}

TEST_F(MultipartParserTest, SearchIsThatOfASingleByteRestart) {
    // The described search, word by word, against streams made of pieces of the pattern.
    const std::string_view boundary = "--myboundary";
    const std::vector<std::string> pieces{"-",           "--",           "--my", "m",
                                          "--myboundar", "--myboundary", "y"};
    std::mt19937 random(2);
    capacity = 4000;
    for (int round = 0; round < 300; ++round) {
        std::string body;
        for (int i = 0; i < 40; ++i) body += pieces[random() % pieces.size()];
        std::size_t matchPos = 0;
        std::size_t end = 0;
        for (std::size_t i = 0; i < body.size() && end == 0; ++i) {
            if (body[i] == boundary[matchPos]) {
                if (++matchPos == boundary.size()) end = i + 1;
            } else {
                matchPos = body[i] == boundary[0] ? 1 : 0;
            }
        }
        Pictures expected;
        if (end >= 14) expected.push_back({body.substr(0, end - 14), SYSTEMTIME{}});
        const std::string stream = Stream("Stamp:\n\n" + body);
        ASSERT_EQ(Parse(stream, {}), expected) << body;
        ASSERT_EQ(Parse(stream, Sizes(stream.size(), 1)), expected) << body;
    }
}

TEST_F(MultipartParserTest, Stamps) {
    const auto expectTime = [this](const std::string& stamp, const SYSTEMTIME& time) {
        SCOPED_TRACE(stamp);
        Expect(Stream(Part(stamp, "x")), {{"x", time}});
    };
    expectTime("7d3010f 0c1e2d 32 0", kTime);
    expectTime(" \t\r\n 07D3010F \v 0x0C1E2D\n+0X32\f0 trailing", kTime);
    expectTime("7d3010f 0c1e2d 32", kTime);  // the fourth isn't needed
    expectTime("", {});
    expectTime(" none 1 2 3", {});
    expectTime("7d3010f", {2003, 1, 0, 15, 0, 0, 0, 0});
    expectTime("7d3010f g 32 0", {2003, 1, 0, 15, 0, 0, 0, 0});  // nothing behind a failure
    expectTime("7d3010f 0x 32 0", {2003, 1, 0, 15, 0, 0, 0, 0});
    expectTime("7d3010f\0c1e2d 32"s, {2003, 1, 0, 15, 0, 0, 0, 0});
    expectTime("ffffffff ffffffff ffff 0", {65535, 255, 0, 255, 255, 255, 255, 65526});
    expectTime("-1 -1 -1", {65535, 255, 0, 255, 255, 255, 255, 65526});
    expectTime("123407d3010f 0c1e2d 32", kTime);  // the low 32 bits count
}

TEST_F(MultipartParserTest, BodyShorterThanItsLineEndIsDropped) {
    Expect(Stream("Stamp:1\n\n--myboundary Stamp:1\n\nx--myboundary" + Part("good")),
           {{"good", kTime}});
    Expect(Stream("Stamp:\n\n\r\n--myboundary"), {{"", SYSTEMTIME{}}});
}

TEST_F(MultipartParserTest, LargestPictureFits) {
    const std::string largest(capacity - 14, 'j');
    Expect(Stream(Part(largest) + Part(largest + "j") + Part("small") + Part(largest)),
           {{largest, kTime}, {"small", kTime}, {largest, kTime}});
}

TEST_F(MultipartParserTest, WhatDoesNotFitIsDroppedUpToTheNextStamp) {
    const std::string tooLong(capacity + 100, 'x');
    const Pictures good{{"good", kTime}};
    Expect(Stream(Part(tooLong) + Part("good")), good);
    Expect(Stream("Stamp:" + tooLong + Part("good")), good);
    Expect("Content-Type: " + tooLong + "\r\n" + Part("good"), good);
    // The part that overflows the frame holds a stamp line in its rest.
    Expect(Stream("Stamp:1\n\n" + std::string(capacity, 'x') + "Stamp:" + std::string(kStamp) +
                  "\n\ngood\r\n--myboundary"),
           good);
    // A single picture is all there is.
    Expect(std::string(kJpegHead) + "\xFF\xD8" + tooLong + "\xFF\xD9" + Part("x"), {});
    const std::string longestSingle = Jpeg(capacity - 4, 's');
    Expect(std::string(kJpegHead) + longestSingle, {{longestSingle, std::nullopt}});
}

}  // namespace
}  // namespace marvolen

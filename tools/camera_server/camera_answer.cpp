#include "tools/camera_server/camera_answer.h"

#include <algorithm>
#include <random>
#include <string_view>

namespace marvolen {
namespace {

constexpr std::string_view kBoundary = "--myboundary";

// A comment segment's length field counts itself and is 16 bits wide (ITU-T T.81, B.2.4.5).
constexpr std::size_t kLargestSegment = 65535;

std::mt19937 RandomFor(std::uint64_t n) {
    return std::mt19937(static_cast<std::uint32_t>(n));
}

// Still a sound JPEG file, with comments behind its start marker that make it too large.
PicturePtr Oversized(const Picture& picture) {
    std::vector<std::uint8_t> jpeg(picture.jpeg.begin(), picture.jpeg.begin() + 2);
    while (jpeg.size() <= kOversizeBytes) {
        jpeg.insert(jpeg.end(), {0xFF, 0xFE, kLargestSegment >> 8, kLargestSegment & 0xFF});
        jpeg.insert(jpeg.end(), kLargestSegment - 2, std::uint8_t{' '});
    }
    jpeg.insert(jpeg.end(), picture.jpeg.begin() + 2, picture.jpeg.end());
    return MakePicture(std::move(jpeg));
}

PicturePtr Truncated(const Picture& picture) {
    std::vector<std::uint8_t> jpeg = picture.jpeg;
    jpeg.resize(jpeg.size() / 2);
    return MakePicture(std::move(jpeg));
}

PicturePtr BitFlipped(const Picture& picture, std::uint64_t n) {
    std::vector<std::uint8_t> jpeg = picture.jpeg;
    std::mt19937 random = RandomFor(n);
    std::uniform_int_distribution<std::size_t> bit(2 * 8, jpeg.size() * 8 - 1);
    for (int flips = 0; flips < 16; ++flips) {
        const std::size_t at = bit(random);
        jpeg[at / 8] ^= static_cast<std::uint8_t>(1U << at % 8);
    }
    return MakePicture(std::move(jpeg));
}

PicturePtr Damaged(const Fault& fault, std::uint64_t n, const PicturePtr& picture) {
    if (!picture || picture->jpeg.size() < 4 || !Strikes(fault, n)) return picture;
    if (fault.kind == FaultKind::Oversize) return Oversized(*picture);
    if (fault.kind == FaultKind::Truncate) return Truncated(*picture);
    if (fault.kind == FaultKind::BitFlip) return BitFlipped(*picture, n);
    return picture;
}

// Random bytes mixed with beginnings of everything a receiver looks for, but no stamp line: ':'
// never occurs. A line end at the end keeps the next header whole.
std::string GarbageBytes(std::uint64_t n) {
    static constexpr std::string_view kNearMisses[] = {
        "Stamp",    "--myboundar", "---myboundary", "--myboundary", "\n\n",
        "\r\n\r\n", "\xFF\xD8",    "\xFF\xD9",      "Content-Type", "SSStamp"};
    std::mt19937 random = RandomFor(n);
    std::string garbage;
    const std::size_t size = 64 + random() % 2000;
    while (garbage.size() < size) {
        if (random() % 32 == 0) {
            garbage += kNearMisses[random() % std::size(kNearMisses)];
        } else {
            const char byte = static_cast<char>(random() & 0xFF);
            garbage += byte == ':' ? ';' : byte;
        }
    }
    return garbage + "\r\n";
}

const char* Reason(int status) {
    if (status == 200) return "OK";
    if (status == 401) return "Unauthorized";
    if (status == 404) return "Not Found";
    return status == 405 ? "Method Not Allowed" : "Bad Request";
}

std::string StatusLine(int status) {
    return "HTTP/1.0 " + std::to_string(status) + ' ' + Reason(status) +
           "\r\nServer: Marvolen camera server\r\n";
}

}  // namespace

std::string StreamHead() {
    return StatusLine(200) +
           "Pragma: no-cache\r\nContent-Type: multipart/x-mixed-replace;boundary=--myboundary\r\n"
           "\r\n" +
           std::string(kBoundary) + "\r\n";
}

std::string SingleHead(std::size_t length) {
    return StatusLine(200) + "Pragma: no-cache\r\nContent-Type: image/jpeg\r\nContent-Length: " +
           std::to_string(length) + "\r\n\r\n";
}

std::string TextAnswer(int status) {
    const std::string body = std::string("<html><body><h1>") + Reason(status) +
                             "</h1>This is a camera.</body></html>\r\n";
    std::string head = StatusLine(status);
    if (status == 401) head += "WWW-Authenticate: Basic realm=\"camera\"\r\n";
    return head + "Content-Type: text/html\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

AnswerPart MakeStreamPart(const Fault& fault, std::uint64_t n, const PicturePtr& picture,
                          const PictureStamp& stamp) {
    AnswerPart part;
    const bool strikes = Strikes(fault, n);
    part.stamped = !(fault.kind == FaultKind::NoStamp && strikes);
    part.stamp = fault.kind == FaultKind::StampBack && strikes ? StampJumpedBack(stamp) : stamp;
    part.before = "Content-Type: image/jpeg\r\n";
    part.before += part.stamped ? StampLine(part.stamp) : "\r\n";
    part.picture = Damaged(fault, n, picture);
    part.after = "\r\n" + std::string(kBoundary) + "\r\n";
    if (fault.kind == FaultKind::Garbage) part.after += GarbageBytes(n);
    return part;
}

AnswerPart MakeSinglePart(const Fault& fault, const PicturePtr& picture) {
    AnswerPart part;
    part.picture = Damaged(fault, 1, picture);
    part.before = SingleHead(part.picture ? part.picture->jpeg.size() : 0);
    return part;
}

}  // namespace marvolen

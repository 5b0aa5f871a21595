#include "tools/camera_server/camera_request.h"

#include "tools/camera_server/base64_decode.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

namespace marvolen {
namespace {

constexpr std::uint32_t kLargestDelay = 100000;

bool SameLetter(unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameLetter);
}

// The text up to the separator, which is removed together with it from rest.
std::string_view TakeUntil(std::string_view& rest, std::string_view separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + separator.size());
    return piece;
}

std::optional<std::uint32_t> ReadNumber(std::string_view text) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

bool ReadOption(std::string_view name, std::string_view value, CameraRequest& request) {
    if (name == "camera") {
        const auto number = ReadNumber(value);
        if (!number || *number < 1 || *number > 4) return false;
        request.camera = static_cast<int>(*number) - 1;
    } else if (name == "fmt") {
        for (const PictureSize size : {PictureSize::Full, PictureSize::Sif, PictureSize::Qsif}) {
            if (value != SizeName(size)) continue;
            request.size = size;
            return true;
        }
        return false;
    } else if (name == "delay") {
        const auto number = ReadNumber(value);
        if (!number || *number > kLargestDelay) return false;
        request.delay = *number;
    }
    return true;
}

int ReadRequestLine(CameraRequest& request) {
    std::string_view rest = request.line;
    const std::string_view method = TakeUntil(rest, " ");
    std::string_view target = TakeUntil(rest, " ");
    if (rest != "HTTP/1.0" && rest != "HTTP/1.1") return 400;
    if (method != "GET") return 405;
    if (TakeUntil(target, "?") != "/getimage") return 404;
    while (!target.empty()) {
        std::string_view value = TakeUntil(target, "&");
        const std::string_view name = TakeUntil(value, "=");
        if (!ReadOption(name, value, request)) return 400;
    }
    return 200;
}

void ReadAuthorization(std::string_view value, CameraRequest& request) {
    const std::string_view scheme = TakeUntil(value, " ");
    if (!EqualIgnoringCase(scheme, "Basic")) return;
    const auto credentials = DecodeBase64(value);
    if (!credentials) return;
    const std::size_t colon = credentials->find(':');
    if (colon == std::string::npos) return;
    request.hasCredentials = true;
    request.userName = credentials->substr(0, colon);
    request.password = credentials->substr(colon + 1);
}

}  // namespace

std::size_t RequestEnd(std::string_view received) {
    const std::size_t end = received.find("\r\n\r\n");
    return end == std::string_view::npos ? 0 : end + 4;
}

CameraRequest ParseCameraRequest(std::string_view head) {
    CameraRequest request;
    request.line = TakeUntil(head, "\r\n");
    request.status = ReadRequestLine(request);
    while (!head.empty()) {
        std::string_view value = TakeUntil(head, "\r\n");
        const std::string_view name = TakeUntil(value, ":");
        const std::size_t start = value.find_first_not_of(" \t");
        if (start != std::string_view::npos && EqualIgnoringCase(name, "Authorization")) {
            ReadAuthorization(value.substr(start), request);
        }
    }
    return request;
}

std::vector<std::string> LoggableHeaders(std::string_view head, std::string_view verdict) {
    constexpr std::string_view kSecret = "Authorization";
    std::vector<std::string> lines;
    bool hidden = false;
    TakeUntil(head, "\r\n");
    while (!head.empty()) {
        const std::string_view line = TakeUntil(head, "\r\n");
        if (line.empty()) continue;
        // A line that begins with a blank continues the one before it (RFC 9112, 5.2).
        if (hidden && (line.front() == ' ' || line.front() == '\t')) continue;
        const auto secret =
            std::search(line.begin(), line.end(), kSecret.begin(), kSecret.end(), SameLetter);
        hidden = secret != line.end();
        std::string& shown = lines.emplace_back(line.begin(), secret);
        if (hidden) shown.append(kSecret).append(": (").append(verdict).append(")");
    }
    return lines;
}

std::chrono::nanoseconds PicturePeriod(std::chrono::nanoseconds period, std::uint32_t delay) {
    return period + std::chrono::milliseconds(10) * delay;
}

}  // namespace marvolen

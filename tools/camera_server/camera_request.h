#pragma once

// What a client asks a camera for: the request's head taken apart, without a socket in sight.

#include "tools/camera_server/picture_source.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

// Longer heads are refused.
inline constexpr std::size_t kLargestRequest = 8192;

struct CameraRequest {
    int status = 400;  // HTTP: 200 asks for pictures; 400, 404, 405 say what is wrong
    std::string line;  // the request line, as received
    int camera = 0;    // zero-based, "camera=1" to "camera=4"; 0 when not given
    PictureSize size = PictureSize::Sif;  // "fmt=full", "sif" or "qsif"; sif when not given
    std::uint32_t delay = 0;  // "delay=", hundredths of a second, at most 100000; 0 when not given
    bool hasCredentials =
        false;  // an "Authorization: Basic" header that decodes to "user:password"
    std::string userName;
    std::string password;
};

// Where the head ends: the index behind its empty line, 0 while that hasn't come.
std::size_t RequestEnd(std::string_view received);

// Reads a whole head. Only GET of /getimage is served; options that cameras don't know are ignored,
// unknown values of the three known ones are a bad request.
CameraRequest ParseCameraRequest(std::string_view head);

// The header lines of a head for a log: as received, but verdict in parentheses in the place of
// whatever proves who the client is.
std::vector<std::string> LoggableHeaders(std::string_view head, std::string_view verdict);

// The time between two pictures for a request's delay: the camera waits that many hundredths of a
// second on top of its own period. At 30 pictures a second a delay of 3, 7, 10, 17, 30, 97, 197,
// 497, 997 gives about 15, 10, 7.5, 5, 3, 1, 0.5, 0.2, 0.1 a second.
std::chrono::nanoseconds PicturePeriod(std::chrono::nanoseconds period, std::uint32_t delay);

}  // namespace marvolen

#pragma once

// The time of a picture as a camera sends it: one line of four hexadecimal numbers, ended by two
// bare line feeds (docs/camera_protocol.md).

#include <compare>
#include <cstdint>
#include <string>

namespace marvolen {

struct PictureStamp {
    std::uint16_t year = 0;
    std::uint8_t month = 0;       // 1..12
    std::uint8_t day = 0;         // 1..31
    std::uint8_t hour = 0;        // 0..23
    std::uint8_t minute = 0;      // 0..59
    std::uint8_t second = 0;      // 0..60
    std::uint8_t hundredths = 0;  // 0..99
    std::uint32_t counter = 0;    // pictures since the connection began, skipped ones included

    friend auto operator<=>(const PictureStamp&, const PictureStamp&) = default;
};

// The local time now, with the given counter.
PictureStamp StampNow(std::uint32_t counter);

// The same time of day an hour earlier (an hour later in the first hour of the day, still a jump).
PictureStamp StampJumpedBack(const PictureStamp& stamp);

// "7d3010f 0c1e2d 32 0": date 0xYYYYMMDD, time of day 0xHHMMSS, hundredths, counter.
std::string StampText(const PictureStamp& stamp);

// "Stamp: ", the text and the two line feeds that end it.
std::string StampLine(const PictureStamp& stamp);

}  // namespace marvolen

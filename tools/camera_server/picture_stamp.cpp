#include "tools/camera_server/picture_stamp.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace marvolen {

PictureStamp StampNow(std::uint32_t counter) {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto hundredths = duration_cast<milliseconds>(now.time_since_epoch()).count() / 10 % 100;
    std::tm local{};
    localtime_r(&seconds, &local);
    return {.year = static_cast<std::uint16_t>(local.tm_year + 1900),
            .month = static_cast<std::uint8_t>(local.tm_mon + 1),
            .day = static_cast<std::uint8_t>(local.tm_mday),
            .hour = static_cast<std::uint8_t>(local.tm_hour),
            .minute = static_cast<std::uint8_t>(local.tm_min),
            .second = static_cast<std::uint8_t>(local.tm_sec),
            .hundredths = static_cast<std::uint8_t>(hundredths),
            .counter = counter};
}

PictureStamp StampJumpedBack(const PictureStamp& stamp) {
    PictureStamp jumped = stamp;
    jumped.hour = static_cast<std::uint8_t>(stamp.hour > 0 ? stamp.hour - 1 : 1);
    return jumped;
}

std::string StampText(const PictureStamp& stamp) {
    const unsigned date = static_cast<unsigned>(stamp.year) << 16 |
                          static_cast<unsigned>(stamp.month) << 8 | stamp.day;
    const unsigned time = static_cast<unsigned>(stamp.hour) << 16 |
                          static_cast<unsigned>(stamp.minute) << 8 | stamp.second;
    char text[48];
    std::snprintf(text, sizeof text, "%x %06x %x %x", date, time,
                  static_cast<unsigned>(stamp.hundredths), static_cast<unsigned>(stamp.counter));
    return text;
}

std::string StampLine(const PictureStamp& stamp) {
    return "Stamp: " + StampText(stamp) + "\n\n";
}

}  // namespace marvolen

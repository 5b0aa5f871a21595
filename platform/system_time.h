#pragma once

// Broken-down times: the form in which cameras stamp pictures and record files keep the stamps.

#include <cstdint>
#include <string>

namespace marvolen {

// Eight 16-bit words, stored in record files as they lie in memory. Stamps come from cameras and
// are not range-checked: a month of 200 is possible.
struct SYSTEMTIME {
    std::uint16_t year;
    std::uint16_t month;      // 1..12
    std::uint16_t dayOfWeek;  // 0 Sunday; 0 in every camera stamp
    std::uint16_t day;        // 1..31
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
    std::uint16_t milliseconds;

    bool operator==(const SYSTEMTIME&) const = default;
};
static_assert(sizeof(SYSTEMTIME) == 16);

// The local date and time now.
SYSTEMTIME LocalTimeNow();

// later - earlier in milliseconds, on the Gregorian calendar without time zones. Fields out of
// range carry over (month 13 is January of the next year), so every pair of times has a difference.
std::int64_t DifferenceInMilliseconds(const SYSTEMTIME& later, const SYSTEMTIME& earlier);

// "2004/02/29 08:15:00". FormatTimeInto is the same into a caller's text whose storage is reused.
std::string FormatTime(const SYSTEMTIME& time);
void FormatTimeInto(const SYSTEMTIME& time, std::string& text);

}  // namespace marvolen

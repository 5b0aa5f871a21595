#include "platform/system_time.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace marvolen {
namespace {

// Days since 1970-01-01, proleptic Gregorian; month may be any number, day 0 is the day before the
// first. Counts in 400-year eras that begin in March, so that the leap day ends a year.
std::int64_t DaysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t months = year * 12 + (month - 1) - 2;
    year = months >= 0 ? months / 12 : -((11 - months) / 12);
    const std::int64_t monthFromMarch = months - year * 12;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

std::int64_t Seconds(const SYSTEMTIME& time) {
    return DaysFromCivil(time.year, time.month, time.day) * 86400 + time.hour * 3600 +
           time.minute * 60 + time.second;
}

}  // namespace

SYSTEMTIME LocalTimeNow() {
    const auto now = std::chrono::system_clock::now();
    const auto sinceEpoch = now.time_since_epoch();
    const auto wholeSeconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
    const std::time_t clock = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&clock, &local);
    const auto word = [](auto value) { return static_cast<std::uint16_t>(value); };
    return {word(local.tm_year + 1900),
            word(local.tm_mon + 1),
            word(local.tm_wday),
            word(local.tm_mday),
            word(local.tm_hour),
            word(local.tm_min),
            word(local.tm_sec),
            word(std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch - wholeSeconds)
                     .count())};
}

std::int64_t DifferenceInMilliseconds(const SYSTEMTIME& later, const SYSTEMTIME& earlier) {
    return (Seconds(later) - Seconds(earlier)) * 1000 + later.milliseconds - earlier.milliseconds;
}

std::string FormatTime(const SYSTEMTIME& time) {
    std::string text;
    FormatTimeInto(time, text);
    return text;
}

void FormatTimeInto(const SYSTEMTIME& time, std::string& text) {
    std::array<char, 48> buffer;
    const int length =
        std::snprintf(buffer.data(), buffer.size(), "%.4d/%.2d/%.2d %.2d:%.2d:%.2d", time.year,
                      time.month, time.day, time.hour, time.minute, time.second);
    text.assign(buffer.data(), static_cast<std::size_t>(length));
}

}  // namespace marvolen

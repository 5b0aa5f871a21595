#include "tools/record_file/record_range.h"

#include "tools/record_file/record_cursor.h"

#include <array>
#include <charconv>

namespace marvolen {
namespace {

template <typename Number>
bool ParseNumber(std::string_view digits, Number& number) {
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end;
}

// A text of the form's length, with digits where it has a zero and its other characters as they
// are.
bool HasForm(std::string_view text, std::string_view form) {
    if (text.size() != form.size()) return false;
    for (std::size_t k = 0; k < text.size(); ++k) {
        const bool fits = form[k] == '0' ? text[k] >= '0' && text[k] <= '9' : text[k] == form[k];
        if (!fits) return false;
    }
    return true;
}

bool ParseTime(std::string_view text, BoundKind kind, SYSTEMTIME& time) {
    constexpr std::string_view kForm = "0000/00/00 00:00:00.000";
    constexpr std::size_t kToSeconds = 19;
    if (!HasForm(text, kForm) && !HasForm(text, kForm.substr(0, kToSeconds))) return false;
    ParseNumber(text.substr(0, 4), time.year);
    ParseNumber(text.substr(5, 2), time.month);
    ParseNumber(text.substr(8, 2), time.day);
    ParseNumber(text.substr(11, 2), time.hour);
    ParseNumber(text.substr(14, 2), time.minute);
    ParseNumber(text.substr(17, 2), time.second);
    time.milliseconds = kind == BoundKind::kFirst ? 0 : 999;
    if (text.size() > kToSeconds) ParseNumber(text.substr(20, 3), time.milliseconds);
    return true;
}

}  // namespace

std::optional<RecordBound> ParseRecordBound(std::string_view text, BoundKind kind) {
    RecordBound bound;
    std::uint64_t number = 0;
    if (ParseNumber(text, number)) {
        bound.number = number;
    } else if (!ParseTime(text, kind, bound.time)) {
        return std::nullopt;
    }
    return bound;
}

std::optional<RecordRange> FindRecordRange(RecordScan& scan,
                                           const std::optional<RecordBound>& first,
                                           const std::optional<RecordBound>& last) {
    std::optional<std::uint64_t> from;
    std::optional<std::uint64_t> to;
    RecordCursor cursor(scan);
    while (cursor.Next()) {
        const std::uint64_t number = cursor.Number();
        const auto since = [&](const SYSTEMTIME& time) {
            return DifferenceInMilliseconds(cursor.Entry().stamp, time);
        };
        const bool begins =
            !first || (first->number ? number == *first->number : since(first->time) >= 0);
        const bool ends =
            !last || (last->number ? number == *last->number : since(last->time) <= 0);
        if (begins && !from) from = number;
        if (ends) to = number;
    }
    if (!from || !to || *from > *to) return std::nullopt;
    return RecordRange{*from, *to};
}

}  // namespace marvolen

#include "app/row_order.h"

#include "app/decimal.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace marvolen {
namespace {

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsDecimalDigit);
}

// dd/mm/yyyy
bool IsDate(std::string_view text) {
    if (text.size() != 10) return false;
    for (std::size_t k = 0; k < text.size(); ++k) {
        const bool slash = k == 2 || k == 5;
        if (slash ? text[k] != '/' : !IsDecimalDigit(text[k])) return false;
    }
    return true;
}

std::uint64_t DecimalAt(std::string_view text, std::size_t position, std::size_t length) {
    return position < text.size() ? LeadingDecimal(text.substr(position, length)) : 0;
}

template <typename Value>
int Sign(const Value& a, const Value& b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

// Year, month, day; b is cut at the same places whatever it holds.
int CompareDates(std::string_view a, std::string_view b) {
    constexpr struct {
        std::size_t position;
        std::size_t length;
    } kFields[] = {{6, 4}, {3, 2}, {0, 2}};
    for (const auto& field : kFields) {
        const int order = Sign(DecimalAt(a, field.position, field.length),
                               DecimalAt(b, field.position, field.length));
        if (order != 0) return order;
    }
    return 0;
}

// The digits text begins with, without leading zeros: the longer of two such numbers is the larger.
std::string_view LeadingDigits(std::string_view text) {
    const auto isZero = [](char c) { return c == '0'; };
    const auto begin = std::find_if_not(text.begin(), text.end(), isZero);
    const auto end = std::find_if_not(begin, text.end(), IsDecimalDigit);
    return {begin, end};
}

int CompareDigits(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? Sign(a.size(), b.size()) : Sign(a, b);
}

// strxfrm: the bytes of the result compare as the locale orders the texts.
std::string CollationKey(std::string_view text) {
    const std::string terminated(text);
    std::string key(terminated.size() * 3 + 16, '\0');
    const std::size_t length = std::strxfrm(key.data(), terminated.c_str(), key.size());
    const bool fits = length < key.size();
    key.resize(fits ? length : length + 1);
    if (!fits) {
        std::strxfrm(key.data(), terminated.c_str(), key.size());
        key.pop_back();
    }
    return key;
}

}  // namespace

SortText::SortText(std::string_view columnText)
    : kind(AllDigits(columnText) ? Kind::Number
           : IsDate(columnText)  ? Kind::Date
                                 : Kind::Text),
      digits(LeadingDigits(columnText)),
      text(columnText),
      collationKey(CollationKey(columnText)) {}

int SortText::Compare(const SortText& other) const {
    switch (kind) {
        case Kind::Number:
            return CompareDigits(digits, other.digits);
        case Kind::Date:
            return CompareDates(text, other.text);
        case Kind::Text:
            break;
    }
    return Sign(collationKey, other.collationKey);
}

std::vector<std::size_t> SortedOrder(std::span<const SortText> texts, bool ascending) {
    // Whether row b must stand before row a, which stands before it now.
    const auto goesFirst = [&](std::size_t b, std::size_t a) {
        return ascending ? texts[a].Compare(texts[b]) > 0 : texts[b].Compare(texts[a]) > 0;
    };
    std::vector<std::size_t> order(texts.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> merged(order.size());
    for (std::size_t run = 1; run < order.size(); run *= 2) {
        for (std::size_t begin = 0; begin < order.size(); begin += 2 * run) {
            const std::size_t middle = std::min(begin + run, order.size());
            const std::size_t end = std::min(begin + 2 * run, order.size());
            std::size_t left = begin;
            std::size_t right = middle;
            for (std::size_t out = begin; out < end; ++out) {
                const bool takeRight =
                    left == middle || (right < end && goesFirst(order[right], order[left]));
                merged[out] = order[takeRight ? right++ : left++];
            }
        }
        order.swap(merged);
    }
    return order;
}

}  // namespace marvolen

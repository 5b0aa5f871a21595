#include "app/decimal.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace marvolen {

std::uint64_t LeadingDecimal(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max()
                                                   : value;
}

}  // namespace marvolen

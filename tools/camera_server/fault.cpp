#include "tools/camera_server/fault.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace marvolen {
namespace {

struct FaultRow {
    FaultKind kind;
    std::string_view name;
    bool takesCount;
    std::uint32_t defaultCount;
    std::uint32_t smallestCount;
    const char* help;
};

constexpr std::array<FaultRow, 14> kFaults{{
    {FaultKind::None, "none", false, 0, 0, "a healthy camera"},
    {FaultKind::Refuse, "refuse", false, 0, 0, "nobody listens on the port"},
    {FaultKind::Silent, "silent", false, 0, 0, "accepts, then never answers"},
    {FaultKind::Close, "close", false, 0, 0, "accepts and closes at once"},
    {FaultKind::CloseAfter, "close-after", true, 20, 0, "closes after N pictures"},
    {FaultKind::StallAfter, "stall-after", true, 20, 0,
     "stays connected but sends nothing after N pictures"},
    {FaultKind::Trickle, "trickle", true, 4000, 1, "one byte at a time, N bytes a second"},
    {FaultKind::Garbage, "garbage", false, 0, 0, "random bytes between parts"},
    {FaultKind::NoStamp, "no-stamp", true, 3, 1, "every N-th part has no stamp"},
    {FaultKind::StampBack, "stamp-back", true, 10, 1, "every N-th stamp is an hour early"},
    {FaultKind::Oversize, "oversize", true, 3, 1, "every N-th picture exceeds 204800 bytes"},
    {FaultKind::Truncate, "truncate", true, 3, 1, "every N-th picture stops halfway"},
    {FaultKind::BitFlip, "bit-flip", true, 3, 1, "every N-th picture has sixteen bits flipped"},
    {FaultKind::ContentType, "content-type", false, 0, 0, "answers with a web page instead"},
}};

const FaultRow& RowOf(FaultKind kind) {
    for (const FaultRow& row : kFaults) {
        if (row.kind == kind) return row;
    }
    return kFaults[0];
}

}  // namespace

Fault MakeFault(FaultKind kind) {
    return {kind, RowOf(kind).defaultCount};
}

std::optional<Fault> ParseFault(std::string_view text) {
    const std::size_t colon = text.find(':');
    const std::string_view name = text.substr(0, colon);
    for (const FaultRow& row : kFaults) {
        if (row.name != name) continue;
        Fault fault{row.kind, row.defaultCount};
        if (colon == std::string_view::npos) return fault;
        const std::string_view digits = text.substr(colon + 1);
        const char* const end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, fault.count);
        if (!row.takesCount || error != std::errc() || stop != end ||
            fault.count < row.smallestCount) {
            return std::nullopt;
        }
        return fault;
    }
    return std::nullopt;
}

std::string FaultText(const Fault& fault) {
    const FaultRow& row = RowOf(fault.kind);
    std::string text(row.name);
    if (row.takesCount) text += ':' + std::to_string(fault.count);
    return text;
}

std::string FaultHelp() {
    std::string help;
    for (const FaultRow& row : kFaults) {
        const std::string name = std::string(row.name) + (row.takesCount ? "[:N]" : "");
        const std::string defaultText =
            row.takesCount ? " (N = " + std::to_string(row.defaultCount) + ")" : "";
        char line[160];
        std::snprintf(line, sizeof line, "  %-18s %s%s\n", name.c_str(), row.help,
                      defaultText.c_str());
        help += line;
    }
    return help;
}

bool Strikes(const Fault& fault, std::uint64_t n) {
    return fault.count > 0 && n % fault.count == 0;
}

}  // namespace marvolen

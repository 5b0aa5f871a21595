#pragma once

// What a camera can do wrong. A channel has one fault at a time; it can be changed while the server
// runs and holds for the connections that are open as well as for new ones.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace marvolen {

enum class FaultKind {
    None,
    Refuse,       // nobody listens on the port (which stays reserved for the channel)
    Silent,       // accepts and reads, never answers
    Close,        // accepts and closes at once
    CloseAfter,   // closes after `count` pictures
    StallAfter,   // sends nothing more after `count` pictures, but stays connected
    Trickle,      // everything one byte at a time, `count` bytes a second
    Garbage,      // random bytes and near misses of the format between any two parts
    NoStamp,      // every `count`-th part has no stamp line
    StampBack,    // every `count`-th stamp lies an hour before its neighbours
    Oversize,     // every `count`-th picture is larger than kOversizeBytes
    Truncate,     // every `count`-th picture stops halfway
    BitFlip,      // every `count`-th picture has sixteen bits flipped, never in its first two bytes
    ContentType,  // answers with "text/html"
};

// Pictures beyond this size fit no receiver's buffer.
inline constexpr std::size_t kOversizeBytes = 204800;

struct Fault {
    FaultKind kind = FaultKind::None;
    // Meaning as above; pictures are counted on each connection, from 1, beginning when the
    // connection or the fault began, whichever was later. For "every n-th", 1 means every one.
    std::uint32_t count = 0;

    friend bool operator==(const Fault&, const Fault&) = default;
};

// The kind with its default count: 0 for the kinds that take none, 20 for CloseAfter and
// StallAfter, 4000 for Trickle, 10 for StampBack, 3 for the other every-n-th kinds.
Fault MakeFault(FaultKind kind);

// Reads "none", "refuse", "silent", "close", "close-after:20", "stall-after:20", "trickle:4000",
// "garbage", "no-stamp:3", "stamp-back:10", "oversize:3", "truncate:3", "bit-flip:3" or
// "content-type". The number may be left out. Nothing for any other text, for a number where none
// belongs, and for 0 where it makes no sense (it does for the two "after" kinds).
std::optional<Fault> ParseFault(std::string_view text);

// The text that ParseFault reads.
std::string FaultText(const Fault& fault);

// One line a fault, for --help.
std::string FaultHelp();

// Whether the fault strikes the n-th picture (from 1) of a connection.
bool Strikes(const Fault& fault, std::uint64_t n);

}  // namespace marvolen

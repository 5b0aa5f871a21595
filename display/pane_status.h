#pragma once

// What a pane's strip and frame tell about its channel. Flags, combined in one word.

#include <cstdint>

namespace marvolen {

inline constexpr std::uint32_t PANE_SELECTED = 1;   // red frame instead of a black one
inline constexpr std::uint32_t PANE_CONNECTED = 2;  // the connection is established: link mark
inline constexpr std::uint32_t PANE_RECORDING = 4;  // the channel is recording: disc mark

}  // namespace marvolen

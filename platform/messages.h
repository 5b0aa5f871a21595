#pragma once

// Window messages and their values. A message travels with two words, wParam and lParam,
// whose meaning each line gives.

#include <cstdint>

namespace marvolen {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

inline constexpr std::uint32_t WM_USER = 0x400;

// Pane, main window, control panel -> main window. wParam: pane whose pop-up to show, -1 hides all.
inline constexpr std::uint32_t WM_POPUPPANE = WM_USER + 1;
// Main window -> itself, for a channel. wParam: NETEVENT_..., lParam: the channel's ChannelInfo.
inline constexpr std::uint32_t WM_NETEVENT = WM_USER + 100;

static_assert(WM_POPUPPANE == 0x401 && WM_NETEVENT == 0x464);

}  // namespace marvolen

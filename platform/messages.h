#pragma once

// Window and thread messages and their values. A message travels with two words, wParam and lParam,
// whose meaning each line gives.

#include <cstdint>

namespace marvolen {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

// WM_QUIT isn't among them: ThreadQueue::Quit (thread_queue.h) stands for it, which a full queue
// can't refuse.
inline constexpr std::uint32_t WM_USER = 0x400;

// Pane, main window, control panel -> main window. wParam: pane whose pop-up to show, -1 hides all.
inline constexpr std::uint32_t WM_POPUPPANE = WM_USER + 1;
// Channel link -> its owner. wParam: NETEVENT_..., lParam: the channel's ChannelInfo.
inline constexpr std::uint32_t WM_NETEVENT = WM_USER + 100;
// Live pane -> its drawing thread: a picture waits in the pane's buffer.
inline constexpr std::uint32_t WM_PANEPICTURE = WM_USER + 200;
// Drawing thread -> its pane: the thread has left its loop.
inline constexpr std::uint32_t WM_PANETHREADEXIT = WM_USER + 201;

static_assert(WM_POPUPPANE == 0x401 && WM_NETEVENT == 0x464);
static_assert(WM_PANEPICTURE == 0x4C8 && WM_PANETHREADEXIT == 0x4C9);

}  // namespace marvolen

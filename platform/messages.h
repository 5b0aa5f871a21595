#pragma once

// Window and thread messages and their values. A message travels with two words, wParam and lParam,
// whose meaning each line gives.

#include <cstdint>

namespace marvolen {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

// WM_QUIT isn't among them: ThreadQueue::Quit (thread_queue.h) stands for it, which a full queue
// can't refuse.
inline constexpr std::uint32_t WM_COMMAND = 0x111;     // wParam: id | notification code << 16
inline constexpr std::uint32_t WM_SYSCOMMAND = 0x112;  // wParam: command, its low four bits unused
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

// Notification codes in the high half of WM_COMMAND's wParam.
inline constexpr std::uint32_t BN_CLICKED = 0;
inline constexpr std::uint32_t STN_CLICKED = 0;
inline constexpr std::uint32_t STN_DBLCLK = 5;

inline constexpr WPARAM MakeCommand(int id, std::uint32_t code) {
    return static_cast<WPARAM>(static_cast<std::uint32_t>(id) & 0xFFFF) | static_cast<WPARAM>(code)
                                                                              << 16;
}
inline constexpr int CommandId(WPARAM wParam) {
    return static_cast<int>(wParam & 0xFFFF);
}
inline constexpr std::uint32_t CommandCode(WPARAM wParam) {
    return static_cast<std::uint32_t>(wParam >> 16) & 0xFFFF;
}

}  // namespace marvolen

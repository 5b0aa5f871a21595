#pragma once

// The desktop's clipboard: its text, with the line ends that the program's formats have. Interface
// thread only.

#include <QString>

#include <string>
#include <string_view>

namespace marvolen {

enum class ClipboardRead {
    Text,        // there is a text
    NoText,      // the clipboard is empty, or holds something else
    CannotOpen,  // the program that owns the clipboard doesn't answer
};

// How long that program is waited for, milliseconds.
inline constexpr int kClipboardPatience = 2000;

// Reads the clipboard's text into text: UTF-8, every line end CR LF. Anything but Text leaves text
// empty. While another program is waited for, timers, sockets, messages and painting go on; what
// the user does meanwhile comes afterwards.
ClipboardRead GetClipboardText(std::string& text, int patience = kClipboardPatience);

// Puts text on the clipboard as it is.
void SetClipboardText(const QString& text);

// text with a carriage return before every line feed that has none.
std::string WithCarriageReturns(std::string_view text);

}  // namespace marvolen

#pragma once

// What a camera burns into its pictures: its number and name, its clock, and a running counter in
// digits large enough to be read when the picture is reduced to a small pane.

#include "tools/camera_server/scenes/text_mask.h"

#include <array>
#include <string>

namespace marvolen::scenes {

class Overlay {
public:
    // For pictures of that size. channel counts from 1, name is UTF-8. Needs a QGuiApplication; any
    // thread.
    Overlay(int channel, const std::string& name, int width, int height);

    // Draws channel and name at the top, the clock (seconds of the day) at the bottom left and
    // three digits of the counter at the bottom right.
    void Draw(Pixels& pixels, int clock, int counter) const;

private:
    const int width;
    const int height;
    TextMask channelText;
    TextMask nameText;
    std::array<TextMask, 10> largeDigits;
    std::array<TextMask, 10> smallDigits;
    TextMask colon;
    double capHeight = 0;  // of the large digits
};

}  // namespace marvolen::scenes

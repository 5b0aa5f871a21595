#pragma once

// The text that a camera burns into its pictures.

#include <QImage>

#include <string>

namespace marvolen::scenes {

struct OverlayText {
    int channel = 1;   // from 1, two large digits at the top
    std::string name;  // UTF-8, beside them
    int clock = 0;     // seconds of the day, at the bottom left
    int counter = 0;   // three large digits at the bottom right
};

// Draws the text, sized to the picture, white with a dark rim. Any thread; needs a QGuiApplication.
void DrawOverlay(QImage& image, const OverlayText& text);

}  // namespace marvolen::scenes

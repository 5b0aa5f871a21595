#pragma once

// Text as a camera's character generator has it: masks that are made once and laid over pictures.

#include "tools/camera_server/scenes/renderer.h"

#include <QFont>
#include <QString>

#include <cstdint>
#include <vector>

namespace marvolen::scenes {

class TextMask {
public:
    TextMask() = default;
    // The text in white with a dark rim of the given width. Only one thread at a time may make
    // masks; needs a QGuiApplication.
    TextMask(const QString& text, const QFont& font, double rimWidth);

    // How far the next text begins behind this one's beginning, pixels.
    double Advance() const { return advance; }

    // Lays the text over a picture of that width; (x, baseline) is where its first letter stands.
    // What reaches beyond the picture is cut off. Any thread.
    void Draw(Pixels& pixels, int pictureWidth, double x, double baseline) const;

private:
    double advance = 0;
    // The mask's place relative to the first letter's, and its size.
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rim;  // how much of a pixel they cover, of 255
    std::vector<std::uint8_t> face;
};

}  // namespace marvolen::scenes

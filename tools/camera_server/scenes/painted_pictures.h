#pragma once

// Painted scenes as a source of pictures: for each view that somebody asks for, a loop of JPEG
// pictures is painted and encoded once, on threads of its own, and kept.

#include "tools/camera_server/picture_source.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace marvolen {

struct PaintedOptions {
    std::size_t loopLength = 60;          // pictures; a thirtieth of a second each
    int threads = 0;                      // that paint at a time; 0: one for each processor
    bool lowPriority = false;             // paint when nobody else needs the processor
    std::vector<std::string> names = {};  // of the channels, shown in their pictures
};

// Needs a QGuiApplication while it lives (the offscreen platform will do), for the text.
class PaintedPictures : public PictureSource {
public:
    explicit PaintedPictures(PaintedOptions options);
    ~PaintedPictures() override;  // waits for the pictures being painted

    // Null until the view's first picture is ready, some tenths of a second after it was first
    // asked for; first pictures go before all others. While a loop is still growing its newest
    // picture stands in for those to come. Any thread.
    PicturePtr At(const View& view, std::uint64_t position) override;

    // Waits until the loops of all views asked for so far are complete.
    void WaitUntilComplete();

private:
    class Studio;
    std::unique_ptr<Studio> studio;
};

}  // namespace marvolen

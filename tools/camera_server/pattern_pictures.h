#pragma once

// Pictures for tests of everything but decoding: made-up bytes between a JPEG's start and end
// markers, different for every view and position, at no cost worth mentioning. They don't decode;
// StillPictures do.

#include "tools/camera_server/picture_source.h"

#include <cstddef>
#include <map>
#include <vector>

namespace marvolen {

class PatternPictures : public PictureSource {
public:
    // A loop of loopLength pictures per view, of about averageBytes each (from half to one and a
    // half times that). No picture contains a boundary, a stamp or a marker behind its first two
    // bytes and before its last two.
    explicit PatternPictures(std::size_t averageBytes = 4000, std::size_t loopLength = 30);

    PicturePtr At(const View& view, std::uint64_t position) override;

private:
    std::size_t averageBytes;
    std::size_t loopLength;
    std::map<View, std::vector<PicturePtr>> loops;
};

}  // namespace marvolen

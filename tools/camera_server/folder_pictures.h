#pragma once

// The JPEG files of a folder, in the order of their names, as every channel's loop. The files are
// sent as they are, whatever size a request asks for.

#include "tools/camera_server/picture_source.h"

#include <string>
#include <vector>

namespace marvolen {

class FolderPictures : public PictureSource {
public:
    // Reads every file of the folder whose name ends in ".jpg" or ".jpeg", in any case. False when
    // there is none that can be read and begins as a JPEG file does.
    bool Load(const std::string& folder);

    std::size_t Count() const { return pictures.size(); }

    // Channels and cameras begin at different places of the loop.
    PicturePtr At(const View& view, std::uint64_t position) override;

private:
    std::vector<PicturePtr> pictures;
};

}  // namespace marvolen

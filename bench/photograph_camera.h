#pragma once

// What benchmarks with cameras share.

#include "bench/photograph.h"
#include "tools/camera_server/picture_source.h"

#include <fstream>
#include <unistd.h>
#include <vector>

namespace marvolen::bench {

// Eight photographs of 704 x 480, about 50 KB each, for every camera.
class PhotographCamera final : public PictureSource {
public:
    PhotographCamera() {
        for (unsigned seed = 0; seed < 8; ++seed) {
            const Picture photograph = MakePhotograph(704, 480, 6, seed);
            pictures.push_back(MakePicture(EncodeJpeg(photograph, 75)));
        }
    }
    PicturePtr At(const View&, std::uint64_t n) override { return pictures[n % pictures.size()]; }

private:
    std::vector<PicturePtr> pictures;
};

// Memory of this process that is in use.
inline double ResidentMegabytes() {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return double(pages) * double(sysconf(_SC_PAGESIZE)) / 1048576;
}

}  // namespace marvolen::bench

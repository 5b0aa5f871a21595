#include "bench/peer_decoders.h"

#include <turbojpeg.h>
#include <vector>

namespace marvolen::bench {
namespace {

class TurboDecoder final : public PeerDecoder {
public:
    ~TurboDecoder() override { tjDestroy(decoder); }
    const char* Name() const override { return "libjpeg-turbo"; }
    bool Decode(std::span<const std::uint8_t> jpeg) override {
        const auto size = static_cast<unsigned long>(jpeg.size());
        int width = 0;
        int height = 0;
        int sampling = 0;
        int space = 0;
        if (tjDecompressHeader3(decoder, jpeg.data(), size, &width, &height, &sampling, &space)) {
            return false;
        }
        const int stride = (width * 3 + 3) / 4 * 4;
        pixels.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
        constexpr int kFlags = TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_BOTTOMUP;
        return tjDecompress2(decoder, jpeg.data(), size, pixels.data(), width, stride, height,
                             TJPF_BGR, kFlags) == 0;
    }

private:
    const tjhandle decoder = tjInitDecompress();
    std::vector<std::uint8_t> pixels;
};

}  // namespace

std::unique_ptr<PeerDecoder> MakeTurboDecoder() {
    return std::make_unique<TurboDecoder>();
}

}  // namespace marvolen::bench

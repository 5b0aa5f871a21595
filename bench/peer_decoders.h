#pragma once

// Decoders that other programs use, as yardsticks. Each decodes a JPEG picture to rows of B, G, R,
// bottom row first, as fast as it is usually asked to.

#include <cstdint>
#include <memory>
#include <span>

namespace marvolen::bench {

class PeerDecoder {
public:
    virtual ~PeerDecoder() = default;
    virtual const char* Name() const = 0;

    // Decodes a picture of whatever size; false when it can't be decoded.
    virtual bool Decode(std::span<const std::uint8_t> jpeg) = 0;
};

// libjpeg-turbo with its fast DCT and fast upsampling.
std::unique_ptr<PeerDecoder> MakeTurboDecoder();

// libavcodec on one thread, and swscale; null where the benchmarks were built without them.
std::unique_ptr<PeerDecoder> MakeAvDecoder();

}  // namespace marvolen::bench

#pragma once

namespace marvolen {

// How large a picture comes out of the decoder.
enum class JpegScale {
    Full,  // as its frame header says
    Half,  // half of it each way, rounded up: a pixel is the mean of the four it stands for
};

}  // namespace marvolen

#pragma once

namespace marvolen {

// Which arithmetic decodes a picture. Both give the same picture but for rounding, unless an
// encoder quantised next to nothing away: see docs/jpeg_decoder.md, "Arithmetic".
enum class JpegPath {
    Fast,   // 16-bit inverse DCT with the dequantisation folded in; what every pane uses
    Plain,  // 32-bit inverse DCT, slower and a little more exact
};

}  // namespace marvolen

#pragma once

#include <array>
#include <cstdint>

namespace marvolen {

inline constexpr int kMaxJpegSize = 8192;     // pixels, width and height
inline constexpr int kMaxJpegComponents = 4;  // per frame and per scan
inline constexpr int kMaxBlocksPerMcu = 10;   // ITU-T T.81, B.2.3
inline constexpr int kMaxBlocksPerMcuRow = 6144;
inline constexpr int kBlockSize = 64;  // coefficients or samples of one 8x8 block

// How components are sampled, and with it how an MCU and an output row are laid out. The blocks of
// an MCU are its Y blocks row by row, then Cb, then Cr.
enum class ColourMode : std::uint8_t {
    Gray = 0,  // one component; 8x8 pixels an MCU
    Y1x1 = 1,  // no subsampling; 8x8
    Y2x1 = 2,  // chroma halved across; 16x8
    Y1x2 = 3,  // chroma halved down; 8x16
    Y2x2 = 4,  // chroma halved both ways; 16x16
};
inline constexpr int kColourModes = 5;

struct JpegComponent {
    int horizontal = 0;  // sampling factors as received
    int vertical = 0;
    int quantTable = 0;  // 0..255 as received; above 3 names no table
    int identifier = 0;
    int widthInBlocks = 0;  // set by SetUpScanGeometry
    int heightInBlocks = 0;
};

// The frame header (ITU-T T.81, B.2.2) and what follows from it.
struct JpegFrame {
    int width = 0;  // pixels, 1..8192
    int height = 0;
    bool progressive = false;
    int componentCount = 0;
    std::array<JpegComponent, kMaxJpegComponents> components;

    // Set by PrepareFrame.
    ColourMode colourMode = ColourMode::Gray;
    int mcuWidth = 0;  // pixels, 8 or 16
    int mcuHeight = 0;
    int blocksPerMcu = 0;
    int mcusPerRow = 0;
    int mcuRows = 0;
    int bytesPerPixel = 0;   // 1 gray, 4 colour
    int rowBytes = 0;        // of a row as handed out
    int rowBufferBytes = 0;  // of a row as computed: the width rounded up to 16
    int blocksPerMcuRow = 0;
};

// The scan header (B.2.3) and what follows from it.
struct JpegScan {
    int componentCount = 0;
    std::array<int, kMaxJpegComponents> components{};  // frame indices, in scan order
    std::array<int, kMaxJpegComponents> dcSlot{};      // Huffman slot per frame component
    std::array<int, kMaxJpegComponents> acSlot{};
    int spectralStart = 0;
    int spectralEnd = 0;
    int approximationHigh = 0;
    int approximationLow = 0;

    // Set by SetUpScanGeometry.
    int mcusPerRow = 0;
    int mcuRows = 0;
    int blocksPerMcu = 0;
    std::array<int, kMaxBlocksPerMcu> blockComponents{};  // frame index of each block of an MCU
};

// Chooses the colour mode and works out the sizes that depend on it. Throws JpegFailure: -225
// for a component count other than 1 and 3, -226 for sampling factors outside ColourMode, -229
// for a row of too many blocks.
//
// A lone component is sampled relative to itself, so its factors mean nothing whatever they are;
// they are set to 1.
void PrepareFrame(JpegFrame& frame);

// Works out the blocks of the components and the MCUs of the scan (A.2.2, A.2.3). The frame must
// be prepared. Throws JpegFailure -212 when an MCU would have more than 10 blocks.
void SetUpScanGeometry(JpegFrame& frame, JpegScan& scan);

}  // namespace marvolen

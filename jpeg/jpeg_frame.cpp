// Frame and scan geometry, ITU-T T.81, A.1.1 and A.2.

#include "jpeg/jpeg_frame.h"

#include "jpeg/jpeg_error.h"

#include <algorithm>

namespace marvolen {
namespace {

constexpr int CeilDiv(int value, int divisor) {
    return (value + divisor - 1) / divisor;
}

ColourMode ChooseColourMode(const JpegFrame& frame) {
    if (frame.componentCount == 1) return ColourMode::Gray;
    if (frame.componentCount != 3) Fail(kJpegErrorComponents);
    const auto sampledAs = [&](int index, int horizontal, int vertical) {
        const JpegComponent& component = frame.components[static_cast<std::size_t>(index)];
        return component.horizontal == horizontal && component.vertical == vertical;
    };
    if (!sampledAs(1, 1, 1) || !sampledAs(2, 1, 1)) Fail(kJpegErrorSampling);
    if (sampledAs(0, 1, 1)) return ColourMode::Y1x1;
    if (sampledAs(0, 2, 1)) return ColourMode::Y2x1;
    if (sampledAs(0, 1, 2)) return ColourMode::Y1x2;
    if (sampledAs(0, 2, 2)) return ColourMode::Y2x2;
    Fail(kJpegErrorSampling);
}

}  // namespace

void PrepareFrame(JpegFrame& frame) {
    frame.colourMode = ChooseColourMode(frame);
    const bool gray = frame.colourMode == ColourMode::Gray;
    if (gray) frame.components[0].horizontal = frame.components[0].vertical = 1;
    const JpegComponent& luma = frame.components[0];
    frame.mcuWidth = 8 * luma.horizontal;
    frame.mcuHeight = 8 * luma.vertical;
    frame.blocksPerMcu = luma.horizontal * luma.vertical + (gray ? 0 : 2);
    frame.mcusPerRow = CeilDiv(frame.width, frame.mcuWidth);
    frame.mcuRows = CeilDiv(frame.height, frame.mcuHeight);
    frame.bytesPerPixel = gray ? 1 : 4;
    frame.rowBytes = frame.bytesPerPixel * frame.width;
    frame.rowBufferBytes = frame.bytesPerPixel * CeilDiv(frame.width, 16) * 16;
    frame.blocksPerMcuRow = frame.blocksPerMcu * frame.mcusPerRow;
    if (frame.blocksPerMcuRow > kMaxBlocksPerMcuRow) Fail(kJpegErrorBlocks);
}

void SetUpScanGeometry(JpegFrame& frame, JpegScan& scan) {
    int maxHorizontal = 1;
    int maxVertical = 1;
    for (const JpegComponent& component : frame.components) {
        maxHorizontal = std::max(maxHorizontal, component.horizontal);
        maxVertical = std::max(maxVertical, component.vertical);
    }
    for (JpegComponent& component : frame.components) {
        const int width = CeilDiv(frame.width * component.horizontal, maxHorizontal);
        const int height = CeilDiv(frame.height * component.vertical, maxVertical);
        component.widthInBlocks = CeilDiv(width, 8);
        component.heightInBlocks = CeilDiv(height, 8);
    }
    scan.blocksPerMcu = 0;
    if (scan.componentCount == 1) {
        const int index = scan.components[0];
        const JpegComponent& component = frame.components[static_cast<std::size_t>(index)];
        scan.mcusPerRow = component.widthInBlocks;
        scan.mcuRows = component.heightInBlocks;
        scan.blocksPerMcu = 1;
        scan.blockComponents[0] = index;
        return;
    }
    scan.mcusPerRow = CeilDiv(CeilDiv(frame.width, 8), maxHorizontal);
    scan.mcuRows = CeilDiv(CeilDiv(frame.height, 8), maxVertical);
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.componentCount); ++i) {
        const int index = scan.components[i];
        const JpegComponent& component = frame.components[static_cast<std::size_t>(index)];
        const int blocks = component.horizontal * component.vertical;
        if (scan.blocksPerMcu + blocks > kMaxBlocksPerMcu) Fail(kJpegErrorScanLength);
        for (int block = 0; block < blocks; ++block) {
            scan.blockComponents[static_cast<std::size_t>(scan.blocksPerMcu++)] = index;
        }
    }
}

}  // namespace marvolen

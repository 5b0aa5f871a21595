#include "jpeg/mcu_transform.h"

namespace marvolen {

void McuTransform::Begin(const JpegFrame& frame, const McuRow& row, const JpegKernels& newKernels) {
    pairCount = 0;
    const int group = McuRow::GroupOf(frame.colourMode);
    std::size_t index = 0;
    const auto mcuBlocks = static_cast<std::size_t>(frame.blocksPerMcu);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const JpegComponent& component = frame.components[i];
        const SamplePlane& plane = row.planes[i];
        const int edge = row.blockEdges[i];
        const auto idct = edge == 8 ? newKernels.fullIdct : newKernels.halfIdct;
        const auto place = [&](int x, int y) {
            return Place{index++, plane.Line(edge * y) + edge * x, component.quantTable,
                         edge * component.horizontal};
        };
        const int blocks = component.horizontal * component.vertical;
        if (blocks == 1 && group == 1) {
            // Cb fills the first half of a pair, Cr the second.
            if (i == 1) pairs[pairCount] = {place(0, 0), {}, plane.stride, idct};
            if (i == 2) pairs[pairCount++].second = place(0, 0);
        } else if (blocks == 1) {
            Place second = place(0, 0);
            const Place first = second;
            second.index += mcuBlocks;
            second.samples += second.step;
            pairs[pairCount++] = {first, second, plane.stride, idct};
        } else {
            for (int block = 0; block < blocks; block += 2) {
                const auto at = [&](int number) {
                    return place(number % component.horizontal, number / component.horizontal);
                };
                const Place first = at(block);
                pairs[pairCount++] = {first, at(block + 1), plane.stride, idct};
            }
        }
    }
}

void McuTransform::TransformGroup(const JpegTables& tables, const std::int16_t* coefficients,
                                  const std::uint8_t* ends, int firstMcu) const {
    const auto block = [&](const Place& place) {
        return IdctBlock{coefficients + place.index * kBlockSize,
                         tables.QuantTable(place.quantTable), ends[place.index],
                         place.samples + place.step * firstMcu};
    };
    for (std::size_t i = 0; i < pairCount; ++i) {
        const Pair& pair = pairs[i];
        pair.idct(block(pair.first), block(pair.second), pair.stride);
    }
}

}  // namespace marvolen

#include "jpeg/mcu_transform.h"

namespace marvolen {

void McuTransform::Begin(const JpegFrame& frame, const McuRow& row, const JpegKernels& newKernels) {
    idct = row.blockEdge == 8 ? newKernels.fullIdct : newKernels.halfIdct;
    pairCount = 0;
    const int group = McuRow::GroupOf(frame.colourMode);
    std::size_t index = 0;
    const auto mcuBlocks = static_cast<std::size_t>(frame.blocksPerMcu);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const JpegComponent& component = frame.components[i];
        const SamplePlane& plane = row.planes[i];
        const auto place = [&](int x, int y) {
            return Place{index++, plane.Line(row.blockEdge * y) + row.blockEdge * x,
                         component.quantTable, row.blockEdge * component.horizontal};
        };
        const int blocks = component.horizontal * component.vertical;
        if (blocks == 1 && group == 1) {
            // Cb fills the first half of a pair, Cr the second.
            if (i == 1) pairs[pairCount] = {place(0, 0), {}, plane.stride};
            if (i == 2) pairs[pairCount++].second = place(0, 0);
        } else if (blocks == 1) {
            Place second = place(0, 0);
            const Place first = second;
            second.index += mcuBlocks;
            second.samples += second.step;
            pairs[pairCount++] = {first, second, plane.stride};
        } else {
            for (int block = 0; block < blocks; block += 2) {
                const auto at = [&](int number) {
                    return place(number % component.horizontal, number / component.horizontal);
                };
                const Place first = at(block);
                pairs[pairCount++] = {first, at(block + 1), plane.stride};
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
        idct(block(pairs[i].first), block(pairs[i].second), pairs[i].stride);
    }
}

}  // namespace marvolen

#pragma once

#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/mcu_row.h"

#include <array>
#include <cstddef>

namespace marvolen {

// Inverse DCT on the fast path: the blocks of an MCU row to samples, a group of MCUs (see McuRow)
// at a time, so that it can be done as soon as the group is decoded.
class McuTransform {
public:
    // Lays out a group for a prepared frame and its allocated row.
    void Begin(const JpegFrame& frame, const McuRow& row, const JpegKernels& newKernels);

    // Transforms one group: its blocks stand at coefficients, the ends of them at ends, and their
    // samples go to where the row has MCU firstMcu. Takes the tables as they are now.
    void TransformGroup(const JpegTables& tables, const std::int16_t* coefficients,
                        const std::uint8_t* ends, int firstMcu) const;

private:
    // A block of a group.
    struct Place {
        std::size_t index = 0;            // among the blocks of the group
        std::uint8_t* samples = nullptr;  // in the row's first group
        int quantTable = 0;
        int step = 0;  // bytes from its place in an MCU to that in the next one
    };
    // Two blocks of one component, or one of Cb and of Cr: their planes are equally wide.
    struct Pair {
        Place first;
        Place second;
        std::ptrdiff_t stride = 0;
        JpegKernels::Idct idct = nullptr;
    };

    std::array<Pair, 3> pairs;
    std::size_t pairCount = 0;
};

}  // namespace marvolen

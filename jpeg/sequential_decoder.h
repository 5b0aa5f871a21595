#pragma once

#include "jpeg/entropy_state.h"
#include "jpeg/fast_bit_reader.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_path.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/mcu_row.h"
#include "jpeg/plain_bit_reader.h"

namespace marvolen {

// Entropy decoding of sequential scans (ITU-T T.81, F.2), an MCU row at a time.
class SequentialDecoder {
public:
    // All arguments are borrowed.
    SequentialDecoder(JpegInput& newInput, PlainBitReader& newPlainReader,
                      const JpegTables& newTables)
        : input(newInput), plainReader(newPlainReader), fastReader(newInput), tables(newTables) {}

    // Takes over from the marker layer right behind a scan header. The fast path leaves
    // coefficients quantised, the plain one dequantises them. Throws JpegFailure.
    void BeginScan(JpegPath newPath, int restartInterval);

    // Decodes the next MCU row into row. Throws JpegFailure: -227 for a coefficient beyond the
    // block, -228 for a restart marker that isn't there.
    void DecodeMcuRow(const JpegFrame& frame, const JpegScan& scan, McuRow& row);

private:
    JpegInput& input;
    PlainBitReader& plainReader;
    FastBitReader fastReader;
    const JpegTables& tables;
    EntropyState state;
    JpegPath path = JpegPath::Fast;
};

}  // namespace marvolen

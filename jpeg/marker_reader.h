#pragma once

#include "jpeg/allocation_table.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_path.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/plain_bit_reader.h"

#include <cstdint>

namespace marvolen {

// Marker codes (ITU-T T.81, table B.1) that the decoder tells apart.
enum JpegMarker : std::uint8_t {
    kMarkerTem = 0x01,
    kMarkerSof0 = 0xC0,
    kMarkerSof1 = 0xC1,
    kMarkerSof2 = 0xC2,
    kMarkerDht = 0xC4,
    kMarkerJpg = 0xC8,
    kMarkerSof9 = 0xC9,
    kMarkerDac = 0xCC,
    kMarkerSof15 = 0xCF,
    kMarkerRst0 = 0xD0,
    kMarkerRst7 = 0xD7,
    kMarkerSoi = 0xD8,
    kMarkerEoi = 0xD9,
    kMarkerSos = 0xDA,
    kMarkerDqt = 0xDB,
    kMarkerDri = 0xDD,
};

// The marker layer (ITU-T T.81, B.1 and B.2): finds markers, fills JpegTables on the way and
// parses frame and scan headers. Every operation reads from the bit reader primed for markers and
// throws JpegFailure at the first thing that is wrong.
class MarkerReader {
public:
    // The arguments are borrowed. The path chooses the form of the quantisation tables.
    MarkerReader(PlainBitReader& newReader, JpegTables& newTables, AllocationTable& newAllocations,
                 JpegPath newPath)
        : reader(newReader), tables(newTables), allocations(newAllocations), path(newPath) {}

    // Consumes everything up to and including the start-of-image marker, which must begin within
    // the first 512 bytes: else -217.
    void FindStartOfImage();

    // The code of the next SOFn, SOI, EOI or SOS; its segment is unread. Tables and the restart
    // interval before it are taken in, other segments are skipped.
    std::uint8_t NextMarker();

    // Parses a frame header after its SOFn.
    void ReadFrameHeader(JpegFrame& frame);

    // Parses a scan header after its SOS. A sequential scan always covers coefficients 0..63.
    void ReadScanHeader(const JpegFrame& frame, JpegScan& scan);

    // MCUs between restart markers, 0 for none.
    int RestartInterval() const { return restartInterval; }

private:
    int Read8() { return static_cast<int>(reader.ReadRawBits(8)); }
    int Read16() { return static_cast<int>(reader.ReadRawBits(16)); }
    int Read4() { return static_cast<int>(reader.ReadRawBits(4)); }

    void ReadHuffmanTables();
    void ReadQuantTables();
    void ReadRestartInterval();
    void SkipSegment();

    PlainBitReader& reader;
    JpegTables& tables;
    AllocationTable& allocations;
    const JpegPath path;
    int restartInterval = 0;
};

}  // namespace marvolen

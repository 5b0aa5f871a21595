#pragma once

#include "jpeg/allocation_table.h"
#include "jpeg/jpeg_error.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_input.h"
#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_path.h"
#include "jpeg/jpeg_scale.h"
#include "jpeg/jpeg_source.h"
#include "jpeg/jpeg_tables.h"
#include "jpeg/marker_reader.h"
#include "jpeg/mcu_row.h"
#include "jpeg/mcu_transform.h"
#include "jpeg/plain_bit_reader.h"
#include "jpeg/progressive_decoder.h"
#include "jpeg/progressive_segment_decoder.h"
#include "jpeg/row_output.h"
#include "jpeg/segment_decoder.h"
#include "jpeg/sequential_decoder.h"

#include <cstddef>
#include <cstdint>

namespace marvolen {

// Decodes one JPEG picture (ITU-T T.81) row by row: Huffman-coded sequential and progressive
// frames of 8-bit samples, gray or YCbCr, up to 8192 x 8192 pixels. docs/jpeg_decoder.md says what
// is accepted and how the arithmetic goes.
//
// Use: construct; GetError, stop if not 0; StartDecompress, stop if not 0; the size;
// ReadScanline until it returns non-zero; destroy. A decoder serves one picture. Once an error
// is stored it stays, every block of memory is already freed, and only destruction remains.
//
// One thread uses a decoder and its source; decoders share nothing but constants. Running out of
// data is no error: the stream goes on with end-of-image markers, so that a truncated picture is
// still a picture. A progressive picture whose scans go far beyond what any encoder makes is
// refused with -227 (see ProgressiveDecoder), so that no stream can keep the thread. The object
// takes about 12 KB, on the stack where it is used.
class JpegDecoder {
public:
    // Takes the source (borrowed; it must outlive the decoder) and reads up to and including the
    // frame header. Failure shows in GetError. Half scale is for the fast path; the plain one
    // decodes at full scale whatever it is told.
    JpegDecoder(JpegSource* newSource, JpegPath newPath, JpegScale newScale = JpegScale::Full);

    // Calls End on the source if it is still held.
    ~JpegDecoder();

    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    // Another scale than the constructor's; before StartDecompress.
    void SetScale(JpegScale newScale) {
        scale = path == JpegPath::Fast ? newScale : JpegScale::Full;
    }

    // The stored error: 0, or a JpegError.
    int GetError() const { return error; }

    // Reads on to the first row: of a progressive picture all scans, of a sequential one the scan
    // header. Returns 0 once started, whatever came after, or -1 when an error is or was stored.
    int StartDecompress();

    // From the frame header: pixels, pixels, components.
    int GetWidth() const { return frame.width; }
    int GetHeight() const { return frame.height; }
    int GetComponents() const { return frame.componentCount; }

    // 1 for gray, 4 for colour; valid after StartDecompress.
    int GetBytesPerPixel() const { return frame.bytesPerPixel; }

    // Pixels of the picture that comes out: at half scale half of the above, rounded up.
    int OutputWidth() const { return ScaledDown(frame.width); }
    int OutputHeight() const { return ScaledDown(frame.height); }

    // Hands out the next row at full scale, top to bottom. Returns 0 with *row and *rowBytes (width
    // x bytes per pixel) set: gray bytes, or R, G, B, 0. The row belongs to the decoder and stays
    // valid until the next call. Returns 1 when all rows have been handed out; -1 when an error is
    // stored or the decoder has not started; -227 when decoding failed now (GetError says why).
    int ReadScanline(const std::uint8_t** row, int* rowBytes);

    // Instead of ReadScanline, and faster: decodes the whole picture into rows of B, G, R, the
    // first one at top and each next one stride bytes further (a negative stride makes the picture
    // bottom-up). Touches 3 x OutputWidth bytes of OutputHeight rows. Returns 0 when all rows came;
    // -1 when an error is stored, the decoder has not started, or rows have been read; -227 when
    // decoding failed (GetError says why): the rows above that place are written, the others
    // untouched.
    int ReadBgr(std::uint8_t* top, std::ptrdiff_t stride);

private:
    template <class Work>
    bool Guarded(Work&& work);
    void Release();

    void ReadToFrameHeader();
    void Start();
    void ReadProgressiveScans();
    void RequireCompleteScan() const;
    void DecodeMcuRow();
    void DecodeSegmentRow(bool keep);
    void ReadBehindScan();
    void TransformMcuRow();
    void TransformPlain();
    int ScaledDown(int size) const { return scale == JpegScale::Half ? (size + 1) / 2 : size; }

    // Constant after construction.
    const JpegPath path;
    const JpegKernels& kernels;

    JpegScale scale;     // constant once started
    JpegSource* source;  // null once released
    AllocationTable allocations;
    JpegTables tables;
    JpegFrame frame;
    JpegScan scan;

    JpegInput input;
    PlainBitReader plainReader{input};
    MarkerReader markers;
    SequentialDecoder sequential;
    ProgressiveDecoder progressive;
    // The same for streams in memory, on the fast path.
    SegmentDecoder sequentialSegments;
    ProgressiveSegmentDecoder progressiveSegments;
    bool usesSegments = false;

    McuRow mcuRow;
    McuTransform transform;
    RowOutput output;
    int mcuRowsDecoded = 0;
    bool started = false;
    int error = 0;
};

}  // namespace marvolen

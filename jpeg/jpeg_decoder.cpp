#include "jpeg/jpeg_decoder.h"

#include "jpeg/idct.h"

#include <algorithm>

namespace marvolen {

JpegDecoder::JpegDecoder(JpegSource* newSource, JpegPath newPath, JpegScale newScale)
    : path(newPath),
      kernels(ActiveJpegKernels()),
      scale(newPath == JpegPath::Fast ? newScale : JpegScale::Full),
      source(newSource),
      markers(plainReader, tables, allocations, path),
      sequential(input, plainReader, tables),
      progressive(input, plainReader, tables),
      sequentialSegments(input),
      progressiveSegments(input, plainReader, tables, kernels) {
    source->Begin();
    input.Attach(source);
    Guarded([this] { ReadToFrameHeader(); });
}

JpegDecoder::~JpegDecoder() {
    Release();
}

// Runs the work; a failure is stored and everything released. True on success.
template <class Work>
bool JpegDecoder::Guarded(Work&& work) {
    try {
        work();
        return true;
    } catch (const JpegFailure& failure) {
        error = failure.code;
        Release();
        return false;
    }
}

void JpegDecoder::Release() {
    if (source != nullptr) source->End();
    source = nullptr;
    allocations.Release();
}

void JpegDecoder::ReadToFrameHeader() {
    plainReader.PrimeForMarkers();
    markers.FindStartOfImage();
    switch (markers.NextMarker()) {
        case kMarkerSof0:
        case kMarkerSof1:
            break;
        case kMarkerSof2:
            frame.progressive = true;
            break;
        case kMarkerSof9:
            Fail(kJpegErrorArithmetic);
        default:
            Fail(kJpegErrorFrameType);
    }
    markers.ReadFrameHeader(frame);
}

int JpegDecoder::StartDecompress() {
    if (started) return 0;
    if (error != 0) return -1;
    return Guarded([this] { Start(); }) ? 0 : -1;
}

void JpegDecoder::Start() {
    PrepareFrame(frame);
    usesSegments = path == JpegPath::Fast && !input.Whole().empty();
    output.Begin(frame, allocations);
    mcuRow.Allocate(frame, scale, allocations);
    transform.Begin(frame, mcuRow, kernels);
    if (frame.progressive) {
        ReadProgressiveScans();
    } else {
        if (markers.NextMarker() != kMarkerSos) Fail(kJpegErrorMarker);
        markers.ReadScanHeader(frame, scan);
        RequireCompleteScan();
        SetUpScanGeometry(frame, scan);
        SetUpScanHuffman(scan, usesSegments ? HuffmanTable::Use::AcPairs : HuffmanTable::Use::Ac,
                         tables);
        RequireQuantTables(frame, scan, tables);
        if (usesSegments) {
            plainReader.GiveBack();
            sequentialSegments.BeginScan(scan, tables, markers.RestartInterval(), allocations);
        } else {
            sequential.BeginScan(path, markers.RestartInterval());
        }
    }
    started = true;
}

// The rows of a sequential picture are built from its first scan alone, whose blocks stand in the
// order of ColourMode.
void JpegDecoder::RequireCompleteScan() const {
    bool complete = scan.componentCount == frame.componentCount;
    for (int i = 0; complete && i < scan.componentCount; ++i) {
        complete = scan.components[static_cast<std::size_t>(i)] == i;
    }
    if (!complete) Fail(kJpegErrorComponents);
}

void JpegDecoder::ReadProgressiveScans() {
    if (usesSegments) {
        progressiveSegments.AllocateArrays(frame, allocations);
    } else {
        progressive.AllocateArrays(frame, allocations);
    }
    for (;;) {
        const std::uint8_t marker = markers.NextMarker();
        if (marker == kMarkerEoi) break;
        if (marker != kMarkerSos) Fail(kJpegErrorMarker);
        markers.ReadScanHeader(frame, scan);
        SetUpScanGeometry(frame, scan);
        SetUpScanHuffman(scan, HuffmanTable::Use::Ac, tables);
        RequireQuantTables(frame, scan, tables);
        if (usesSegments) {
            progressiveSegments.DecodeScan(frame, scan, markers.RestartInterval());
        } else {
            progressive.DecodeScan(frame, scan, markers.RestartInterval());
        }
    }
    scan.componentCount = frame.componentCount;
    for (int i = 0; i < frame.componentCount; ++i) {
        scan.components[static_cast<std::size_t>(i)] = i;
    }
    SetUpScanGeometry(frame, scan);
    // A component that no scan named still needs its table for the inverse DCT.
    RequireQuantTables(frame, scan, tables);
}

int JpegDecoder::ReadScanline(const std::uint8_t** row, int* rowBytes) {
    if (error != 0 || !started || scale != JpegScale::Full) return -1;
    if (output.Finished()) return 1;
    if (output.NeedsMcuRow()) {
        if (!Guarded([this] { DecodeMcuRow(); })) return kJpegErrorCorrupt;
        output.McuRowDecoded(frame);
    }
    *row = output.NextRow(frame, mcuRow);
    *rowBytes = frame.rowBytes;
    return 0;
}

int JpegDecoder::ReadBgr(std::uint8_t* top, std::ptrdiff_t stride) {
    if (error != 0 || !started || mcuRowsDecoded != 0) return -1;
    const int height = OutputHeight();
    const int vertical = frame.mcuHeight / 8;
    const ColourMode mode = mcuRow.outputMode;
    const int step = mode == ColourMode::Gray || mode == ColourMode::Y1x1 ? 1 : vertical;
    const auto build = kernels.buildBgr[static_cast<std::size_t>(mode)];
    for (int y = 0; y < height;) {
        if (!Guarded([this] { DecodeMcuRow(); })) return kJpegErrorCorrupt;
        const int rows = std::min(mcuRow.blockEdges[0] * vertical, height - y);
        for (int p = 0; p < rows; p += step, y += step, top += step * stride) {
            const SampleLines lines = {
                mcuRow.planes[0].Line(p), mcuRow.planes[0].Line(p + step - 1),
                mcuRow.planes[1].Line(p / step), mcuRow.planes[2].Line(p / step)};
            // The lower row of the last pair may lie below the picture.
            build(lines, OutputWidth(), top, p + 1 < rows ? top + stride : output.SpareRow());
        }
    }
    return 0;
}

void JpegDecoder::DecodeMcuRow() {
    const bool isLast = ++mcuRowsDecoded == frame.mcuRows;
    if (usesSegments) {
        DecodeSegmentRow(isLast && !frame.progressive);
        if (frame.progressive || !isLast) return;
    } else if (frame.progressive) {
        progressive.AssembleMcuRow(frame, scan, mcuRowsDecoded - 1, path, mcuRow);
    } else {
        sequential.DecodeMcuRow(frame, scan, mcuRow);
    }
    if (!frame.progressive && isLast) ReadBehindScan();
    TransformMcuRow();
}

// Transforms each group while it is in the processor's nearest cache, or keeps them all in the row.
void JpegDecoder::DecodeSegmentRow(bool keep) {
    const int group = McuRow::GroupOf(frame.colourMode);
    std::int16_t* coefficients = mcuRow.coefficients;
    std::uint8_t* ends = mcuRow.ends.data();
    for (int mcu = 0; mcu < frame.mcusPerRow; mcu += group) {
        const int mcus = std::min(group, frame.mcusPerRow - mcu);
        if (frame.progressive) {
            progressiveSegments.AssembleMcus(frame, mcuRowsDecoded - 1, mcu, mcus, coefficients,
                                             ends);
        } else {
            sequentialSegments.DecodeMcus(mcus, coefficients, ends);
        }
        if (keep) {
            coefficients += group * frame.blocksPerMcu * kBlockSize;
            ends += group * frame.blocksPerMcu;
        } else {
            transform.TransformGroup(tables, coefficients, ends, mcu);
        }
    }
}

// What follows the scan must be in order too; its code doesn't matter. A quantisation table on the
// way there is in time for the last row on the fast path, which dequantises in the inverse DCT, and
// too late on the plain one, which has dequantised already.
void JpegDecoder::ReadBehindScan() {
    if (usesSegments) sequentialSegments.EndScan();
    plainReader.PrimeForMarkers();
    markers.NextMarker();
}

void JpegDecoder::TransformMcuRow() {
    if (path == JpegPath::Plain) {
        TransformPlain();
        return;
    }
    const int group = McuRow::GroupOf(frame.colourMode);
    const std::int16_t* coefficients = mcuRow.coefficients;
    const std::uint8_t* ends = mcuRow.ends.data();
    for (int mcu = 0; mcu < frame.mcusPerRow; mcu += group) {
        transform.TransformGroup(tables, coefficients, ends, mcu);
        coefficients += group * frame.blocksPerMcu * kBlockSize;
        ends += group * frame.blocksPerMcu;
    }
}

void JpegDecoder::TransformPlain() {
    const std::int16_t* block = mcuRow.coefficients;
    for (int mcu = 0; mcu < frame.mcusPerRow; ++mcu) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
            const JpegComponent& component = frame.components[i];
            const SamplePlane& plane = mcuRow.planes[i];
            for (int y = 0; y < component.vertical; ++y) {
                std::uint8_t* line = plane.Line(8 * y) + 8 * component.horizontal * mcu;
                for (int x = 0; x < component.horizontal; ++x, block += kBlockSize) {
                    PlainIdct(block, line + 8 * x, plane.stride);
                }
            }
        }
    }
}

}  // namespace marvolen

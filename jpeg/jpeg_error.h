#pragma once

namespace marvolen {

// What JpegDecoder::GetError can say. 0 is no error.
//
// -214, -220 and -224 are not used. -229 and -221 guard limits that the accepted picture sizes
// keep out of reach. docs/jpeg_decoder.md tells more of each.
enum JpegError : int {
    kJpegErrorHuffmanCodes = -200,       // more than 255 codes, or more than their length holds
    kJpegErrorHuffmanSlot = -201,        // table class and number give a slot of 8 or more
    kJpegErrorHuffmanLength = -202,      // segment length below 2, or shorter than its tables
    kJpegErrorQuantLength = -203,        // segment length below 2
    kJpegErrorQuantSlot = -204,          // table number above 3
    kJpegErrorPrecision = -205,          // sample precision other than 8
    kJpegErrorHeight = -206,             // height 0 or above 8192
    kJpegErrorWidth = -207,              // width 0 or above 8192
    kJpegErrorFrameComponents = -208,    // more than 4 frame components
    kJpegErrorFrameLength = -209,        // frame header length isn't 8 + 3 x components
    kJpegErrorSegmentLength = -210,      // a skipped segment has a length below 2
    kJpegErrorRestartLength = -211,      // restart interval segment length other than 4
    kJpegErrorScanLength = -212,         // scan header length or component count is wrong
    kJpegErrorScanComponent = -213,      // a scan names a component the frame doesn't have there
    kJpegErrorArithmetic = -215,         // arithmetic coding
    kJpegErrorMarker = -216,             // a marker out of place
    kJpegErrorNoImage = -217,            // no start-of-image marker
    kJpegErrorFrameType = -218,          // unsupported or missing frame header
    kJpegErrorQuantShort = -219,         // segment shorter than the tables it declares
    kJpegErrorAllocations = -221,        // allocation table full
    kJpegErrorQuantMissing = -222,       // a component's quantisation table is not defined
    kJpegErrorHuffmanMissing = -223,     // a Huffman table that a scan needs is not defined
    kJpegErrorComponents = -225,         // component count, or a sequential scan, not supported
    kJpegErrorSampling = -226,           // sampling factors not supported
    kJpegErrorCorrupt = -227,            // corrupt entropy data, or far too much of it
    kJpegErrorRestart = -228,            // restart marker not found, or not the expected one
    kJpegErrorBlocks = -229,             // too many blocks, or a block outside its component
    kJpegErrorSpectralSelection = -230,  // progressive scan with invalid spectral selection
    kJpegErrorSuccessiveApproximation = -231,  // refinement whose low bit isn't high bit - 1
    kJpegErrorRead = -232,                     // the source reported failure
    kJpegErrorMemory = -233,                   // out of memory
};

// The decoder's one error exit: thrown by its stages, caught by the public operation that started
// the work. Never leaves the decoder.
struct JpegFailure {
    JpegError code;
};

[[noreturn]] inline void Fail(JpegError code) {
    throw JpegFailure{code};
}

}  // namespace marvolen

#pragma once

// The AVI file as it lies on disk; docs/avi_export.md is the whole story.
//
// A RIFF file of form "AVI ": an AviHeader of fixed size, then the samples' chunks, alternately one
// of the picture and one of its time, then an index chunk. A chunk is an AviChunk, its bytes, and a
// zero byte where their number is odd; an AviChunk's size counts neither itself nor that byte.
//
// All integers are little-endian.

#include "jpeg/bitmap_info_header.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace marvolen {

static_assert(std::endian::native == std::endian::little,
              "the structures below are written as they lie in memory");

// A four-character code; the first character comes first in the file.
constexpr std::uint32_t FourCc(const char (&code)[5]) {
    std::uint32_t value = 0;
    for (std::size_t k = 4; k-- > 0;) value = value << 8 | static_cast<std::uint8_t>(code[k]);
    return value;
}

struct AviChunk {
    std::uint32_t id;
    std::uint32_t size;
};

// A chunk that holds chunks: "RIFF" or "LIST".
struct AviList {
    std::uint32_t id;
    std::uint32_t size;  // counts form and everything behind it
    std::uint32_t form;
};

// Pictures run at 30000/1001 a second, whatever the rate of the recording.
inline constexpr std::uint32_t kAviScale = 1001;
inline constexpr std::uint32_t kAviRate = 30000;
inline constexpr std::uint32_t kAviMicrosecondsPerFrame =
    (1000000ULL * kAviScale + kAviRate / 2) / kAviRate;
static_assert(kAviMicrosecondsPerFrame == 33367);

inline constexpr std::uint32_t AVIF_HASINDEX = 0x10;
inline constexpr std::uint32_t AVIF_ISINTERLEAVED = 0x100;
inline constexpr std::uint32_t AVIIF_KEYFRAME = 0x10;

inline constexpr std::uint32_t kAviStreams = 2;

struct AviMainHeader {
    AviChunk chunk{FourCc("avih"), 56};
    std::uint32_t dwMicroSecPerFrame = kAviMicrosecondsPerFrame;
    std::uint32_t dwMaxBytesPerSec = 0;  // of samples with their chunk heads
    std::uint32_t dwPaddingGranularity = 0;
    std::uint32_t dwFlags = 0;
    std::uint32_t dwTotalFrames = 0;
    std::uint32_t dwInitialFrames = 0;
    std::uint32_t dwStreams = kAviStreams;
    std::uint32_t dwSuggestedBufferSize = 0;
    std::int32_t dwWidth = 0;
    std::int32_t dwHeight = 0;
    std::array<std::uint32_t, 4> dwReserved{};
};
static_assert(sizeof(AviMainHeader) == sizeof(AviChunk) + 56);

struct AviRect {
    std::int16_t left = 0;
    std::int16_t top = 0;
    std::int16_t right = 0;
    std::int16_t bottom = 0;
};

struct AviStreamHeader {
    AviChunk chunk{FourCc("strh"), 56};
    std::uint32_t fccType;
    std::uint32_t fccHandler;
    std::uint32_t dwFlags = 0;
    std::uint16_t wPriority = 0;
    std::uint16_t wLanguage = 0;
    std::uint32_t dwInitialFrames = 0;
    std::uint32_t dwScale = kAviScale;
    std::uint32_t dwRate = kAviRate;
    std::uint32_t dwStart = 0;
    std::uint32_t dwLength = 0;               // samples
    std::uint32_t dwSuggestedBufferSize = 0;  // bytes of the largest sample
    std::uint32_t dwQuality = 0;
    std::uint32_t dwSampleSize = 0;  // 0: samples differ in size
    AviRect rcFrame{};
};
static_assert(sizeof(AviStreamHeader) == sizeof(AviChunk) + 56);
static_assert(offsetof(AviStreamHeader, rcFrame) == sizeof(AviChunk) + 48);

// Stream 0: the pictures, JPEG images as they were recorded.
struct AviVideoList {
    AviList list{FourCc("LIST"), sizeof(AviVideoList) - sizeof(AviChunk), FourCc("strl")};
    AviStreamHeader header{.fccType = FourCc("vids"), .fccHandler = FourCc("MJPG")};
    AviChunk formatChunk{FourCc("strf"), sizeof(BITMAPINFOHEADER)};
    BITMAPINFOHEADER format{.biSize = sizeof(BITMAPINFOHEADER),
                            .biPlanes = 1,
                            .biBitCount = 24,
                            .biCompression = FourCc("MJPG")};
};

// "2026/11/23 01:52:22" and its NUL.
inline constexpr std::uint32_t kAviTextSize = 4 + 1 + 2 + 1 + 2 + 1 + 2 + 1 + 2 + 1 + 2 + 1;
static_assert(kAviTextSize == 20);

// Stream 1: the pictures' times, drawn into a band at the bottom of a 320 x 240 frame.
struct AviTextList {
    AviList list{FourCc("LIST"), sizeof(AviTextList) - sizeof(AviChunk), FourCc("strl")};
    AviStreamHeader header{.fccType = FourCc("txts"),
                           .fccHandler = FourCc("draw"),
                           .dwSampleSize = kAviTextSize,
                           .rcFrame = {0, 220, 320, 240}};
    AviChunk formatChunk{FourCc("strf"), 4};
    std::uint32_t format = 4;
};

// Everything before the first sample.
struct AviHeader {
    AviList riff{FourCc("RIFF"), 0, FourCc("AVI ")};
    AviList hdrl{FourCc("LIST"),
                 4 + sizeof(AviMainHeader) + sizeof(AviVideoList) + sizeof(AviTextList),
                 FourCc("hdrl")};
    AviMainHeader main;
    AviVideoList video;
    AviTextList text;
    AviList movi{FourCc("LIST"), 4, FourCc("movi")};
};
static_assert(sizeof(AviHeader) == 12 + 12 + 64 + (12 + 64 + 8 + 40) + (12 + 64 + 8 + 4) + 12);
static_assert(sizeof(AviHeader) == 312);

inline constexpr std::uint32_t kAviVideoChunk = FourCc("00dc");
inline constexpr std::uint32_t kAviTextChunk = FourCc("01tx");
inline constexpr std::uint32_t kAviIndexChunk = FourCc("idx1");

// Index positions count from the four characters "movi".
inline constexpr std::uint32_t kAviIndexOrigin = sizeof(AviHeader) - 4;

struct AviIndexEntry {
    std::uint32_t id;
    std::uint32_t flags;
    std::uint32_t position;  // of the sample's AviChunk
    std::uint32_t size;      // as in that AviChunk
};
static_assert(sizeof(AviIndexEntry) == 4 + 4 + 4 + 4);

// The size field of a RIFF chunk has 32 bits; many readers take it for a signed number.
inline constexpr std::uint64_t kAviMaxFileBytes = 0x7FFFFFFF;

}  // namespace marvolen

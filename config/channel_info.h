#pragma once

// The channel table: sixteen fixed-size records that say where each channel's camera is, how to ask
// it for pictures and where to record them.
//
// A record's layout is a file format (the settings files hold the sixteen records byte for byte,
// see docs/settings_format.md), so it is asserted below. The table is one global. It never moves,
// and a channel is known everywhere by the address of its record. It is written only on the
// interface thread while every channel is stopped; no lock guards it.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace marvolen {

inline constexpr int kChannelCount = 16;

// Bytes in a text field. The text ends at the first NUL; bytes behind it are carried along. Read
// and write fields through platform/text_field.h: a damaged file may hold a field without a NUL.
inline constexpr std::size_t kTextFieldSize = 260;

struct ChannelInfo {
    std::int32_t channelIndex;        // zero-based, the record's position in the table
    char netName[kTextFieldSize];     // display name
    char host[kTextFieldSize];        // name or dotted IPv4 address; empty: the channel is unused
    char port[kTextFieldSize];        // TCP port as decimal text
    char userName[kTextFieldSize];    // request credentials
    char password[kTextFieldSize];    // request credentials
    char recordPath[kTextFieldSize];  // record file; a drive-letter path goes through NativePath
    std::int32_t maxSizeMB;    // largest size of the record file, MiB; recorders read it unsigned
    std::int32_t cameraIndex;  // row of g_cameraOptions, unchecked
    std::int32_t sizeIndex;    // row of g_sizeOptions, unchecked
    std::int32_t rateIndex;    // row of g_rateOptions, unchecked
};

static_assert(std::endian::native == std::endian::little,
              "records are stored as they lie in memory");
static_assert(offsetof(ChannelInfo, channelIndex) == 0);
static_assert(offsetof(ChannelInfo, netName) == 4);
static_assert(offsetof(ChannelInfo, host) == 4 + 260);
static_assert(offsetof(ChannelInfo, port) == 4 + 2 * 260);
static_assert(offsetof(ChannelInfo, userName) == 4 + 3 * 260);
static_assert(offsetof(ChannelInfo, password) == 4 + 4 * 260);
static_assert(offsetof(ChannelInfo, recordPath) == 4 + 5 * 260);
static_assert(offsetof(ChannelInfo, maxSizeMB) == 4 + 6 * 260);
static_assert(offsetof(ChannelInfo, cameraIndex) == 1568);
static_assert(offsetof(ChannelInfo, sizeIndex) == 1572);
static_assert(offsetof(ChannelInfo, rateIndex) == 1576);
static_assert(sizeof(ChannelInfo) == 1580);

using ChannelTable = std::array<ChannelInfo, kChannelCount>;
static_assert(sizeof(ChannelTable) == 25280);

// The values a table starts with: no hosts, port "80", user "root", password "tuvk", record files
// "c:\chl01.dbt" to "c:\chl16.dbt" of 1024 MB, camera 1, middle size, 30 pictures a second.
ChannelTable FactoryChannelTable();

// The table of this run. Holds the factory values until LoadSettings replaces them.
extern ChannelTable g_channelInfo;

// The number shown on screen, 1 to 16, of a record of g_channelInfo: its position + 1.
int ChannelNumber(const ChannelInfo* info);

}  // namespace marvolen

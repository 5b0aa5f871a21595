#pragma once

// PageFields: what the controls of one page of the Channel Setting dialog say, and how that and a
// channel's record become each other. No toolkit.
//
// Texts are a record's bytes, whatever encoding they are in. A record is changed only where it says
// something else than the page: bytes behind a text's NUL and fields that nobody touched stay.

#include "config/channel_info.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace marvolen {

struct PageFields {
    std::string host;
    std::string port;
    std::string userName;
    std::string password;
    std::string netName;
    std::string maxSize;  // as typed; MaxSizeOf reads it
    std::string recordPath;
    // Rows of the option tables, or any other number that the record holds.
    std::int32_t cameraIndex = 0;
    std::int32_t sizeIndex = 0;
    std::int32_t rateIndex = 0;

    friend bool operator==(const PageFields&, const PageFields&) = default;
};

// Whether an operation on a page's fields takes in those of its record file, Max size and File
// Path.
enum class FileFields { kWithout, kWith };

PageFields FieldsOf(const ChannelInfo& record);

// Stores the fields in the record. Texts that are too long are cut, never inside a character. The
// record's channelIndex isn't touched.
void Commit(const PageFields& fields, ChannelInfo& record);

// The value of the digits that text begins with, behind blanks and a sign; 0 without any. What 32
// bits can't hold becomes the nearest number that they can.
std::int32_t MaxSizeOf(std::string_view text);

// An empty NET Name becomes the host in parentheses, if there is a host.
void DefaultNetName(PageFields& fields);

// What a page says after it was cleared: no camera, and the usual credentials and choices. Max size
// and File Path stay.
void Clear(PageFields& fields);

// Copies what connects and names a channel, and with kWith its record file.
void CopyFields(const PageFields& source, PageFields& target, FileFields files);

// Takes pages[from] out and puts it to pages[to]; those in between make room by one towards from.
void MoveFields(std::span<PageFields> pages, std::size_t from, std::size_t to);

}  // namespace marvolen

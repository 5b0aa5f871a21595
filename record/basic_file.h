#pragma once

// BasicFile: the lowest of the four file classes that a record file stands on. Each adds one thing
// to the one below:
//
//   BasicFile    an exclusively opened file with 64-bit positions
//   LimitedFile  a maximum size: writes are clipped at it
//   MarkedFile   a watched position: a hook runs before a write covers it
//   RingFile     a ring: header, wrap-around, and a head that is moved out of a write's way
//
// They share these rules. A position or size is a count of bytes from the start of the file. One
// read or write moves at most 2^32 - 1 bytes; got and put receive the bytes moved and may be null.
// Paths are native. Every failure is a false; a failed Create or Open leaves the object closed. An
// object is used by one thread at a time. The destructors close the file and write nothing.

#include "platform/file_handle.h"

#include <cstdint>
#include <string>

namespace marvolen {

class BasicFile {
public:
    BasicFile() = default;
    virtual ~BasicFile();
    BasicFile(const BasicFile&) = delete;
    BasicFile& operator=(const BasicFile&) = delete;

    // Create makes the file or empties an existing one, Open opens an existing one; both for
    // reading and writing, at position 0. False when the file can't be had, in particular while it
    // is open elsewhere, and then nothing happens to it.
    virtual bool Create(const std::string& path);
    virtual bool Open(const std::string& path);
    // Closing a closed file does nothing.
    virtual void Close();

    // Goes to a position, which may lie beyond the end; one that no file can have is refused.
    virtual bool Seek(std::uint64_t pos);
    virtual std::uint64_t Tell();
    // The file's size; 0 while closed.
    virtual std::uint64_t GetSize();

    // Reads up to n bytes at the position, which advances by what was moved. Fewer only at the end
    // of the file; at the end itself it succeeds with a count of 0.
    virtual bool Read(void* buf, std::uint32_t n, std::uint32_t* got);
    // Writes n bytes at the position, which advances by what was moved. A write that fails may have
    // moved some bytes; put receives how many.
    virtual bool Write(const void* buf, std::uint32_t n, std::uint32_t* put);

    bool IsOpen() const { return handle.IsOpen(); }

    // Why the latest Create or Open failed.
    FileOpenError OpenError() const { return handle.OpenError(); }
    // Whether the latest write since the open failed for lack of room.
    bool RanOutOfSpace() const { return handle.RanOutOfSpace(); }

protected:
    // Opens an existing file as it is, or makes an empty one, as Open and Create do.
    bool OpenOrMake(const std::string& path) { return handle.OpenOrMake(path); }
    // Ends the file at the current position; false when the system refuses.
    bool SetEndOfFile() { return handle.Truncate(); }

private:
    FileHandle handle;
};

}  // namespace marvolen

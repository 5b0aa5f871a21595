#pragma once

// FileHandle: one open regular file, with a position of its own, 64-bit throughout.
//
// A file opened with Create or Open is held exclusively: as long as it is open every further
// Create, Open and OpenShared of the same file fails, in other programs and in this one, under
// whatever name the file is reached. The hold is an advisory lock (flock) on the file itself;
// programs that don't ask for it aren't kept out. It ends with Close, and with the process however
// that ends. On a network file system it is worth what that system makes of flock: NFS under Linux
// turns it into a lock on the server; elsewhere other machines may not know of it, or it is
// refused, and then the open fails.
//
// Directories, devices, pipes and sockets are never opened, and no open waits for anything.
//
// A handle is used by one thread at a time. Nothing throws.

#include <cstdint>
#include <string>

namespace marvolen {

// Why an open failed.
enum class FileOpenError {
    kNone,         // it didn't
    kMissing,      // no such file or folder
    kInUse,        // held by another handle, or replaced again and again while being opened
    kNotAFile,     // a directory, device, pipe or socket
    kNoSpace,      // the disk or a quota has no room for a new file
    kInaccessible  // anything else: permission, a bad path
};

class FileHandle {
public:
    FileHandle() = default;
    ~FileHandle() { Close(); }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    // Each opens the file at a native path and sets the position to 0; what this handle held
    // before is closed first. False leaves the handle closed; OpenError() says why.
    //
    // Create makes the file, or empties an existing one. A file held elsewhere keeps its bytes:
    // it is emptied only once it is held.
    bool Create(const std::string& path);
    // Open opens an existing file for reading and writing.
    bool Open(const std::string& path);
    // OpenOrMake opens an existing file for reading and writing as it is, or makes an empty
    // one.
    bool OpenOrMake(const std::string& path);
    // OpenShared opens an existing file for reading only. Several may do so at once; while one
    // of them has it, nobody gets it exclusively.
    bool OpenShared(const std::string& path);

    // Ends the hold. Closing a closed handle does nothing.
    void Close();

    bool IsOpen() const { return descriptor >= 0; }
    // Of the latest of these four.
    FileOpenError OpenError() const { return openError; }

    // The position, in bytes from the start of the file; it may lie beyond the end. A position
    // that no file of this system can have is refused, and the position stays.
    bool Seek(std::uint64_t newPosition);
    std::uint64_t Tell() const { return position; }

    // The file's size in bytes, 0 for a closed handle.
    std::uint64_t Size() const;

    // Move count bytes from, or to, the file at the position, which advances by what was moved.
    // moved receives that number on success and failure alike. A read moves less than count,
    // and succeeds, at the end of the file only. A write that succeeds has moved everything.
    bool Read(void* buffer, std::uint32_t count, std::uint32_t& moved);
    bool Write(const void* buffer, std::uint32_t count, std::uint32_t& moved);

    // Makes a file that is shorter than size bytes that long, with place on the disk for what is
    // added: writing there won't want for room. False where there isn't as much; the file may have
    // grown by some of it then. The position stays.
    bool Reserve(std::uint64_t size);

    // Ends the file at the position.
    bool Truncate();

    // Whether the latest Write or Truncate since the open failed for lack of room: on the disk,
    // within a quota, or up to the largest size a file may have.
    bool RanOutOfSpace() const { return ranOutOfSpace; }

private:
    enum class Hold { kExclusive, kShared };

    bool OpenDescriptor(const std::string& path, int flags, Hold hold);
    bool HoldDescriptor(const std::string& path, int flags, Hold hold);
    bool IsAt(const std::string& path) const;
    bool Fail(FileOpenError error);
    bool FailToStore(int error);

    int descriptor = -1;
    std::uint64_t position = 0;
    FileOpenError openError = FileOpenError::kNone;
    bool ranOutOfSpace = false;
};

}  // namespace marvolen

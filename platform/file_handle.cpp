#include "platform/file_handle.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace marvolen {
namespace {

static_assert(sizeof(off_t) == 8, "record files outgrow 32-bit positions");

constexpr std::uint64_t kLargestPosition =
    static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

// O_NONBLOCK keeps the open of a pipe nobody writes to from waiting; files don't know it.
constexpr int kCommonFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

bool MeansNoSpace(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

FileOpenError ErrorOfOpen(int error) {
    if (MeansNoSpace(error)) return FileOpenError::kNoSpace;
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return FileOpenError::kMissing;
        case EISDIR:
        case ENXIO:
            return FileOpenError::kNotAFile;
        default:
            return FileOpenError::kInaccessible;
    }
}

}  // namespace

bool FileHandle::Fail(FileOpenError error) {
    Close();
    openError = error;
    return false;
}

bool FileHandle::FailToStore(int error) {
    ranOutOfSpace = MeansNoSpace(error);
    return false;
}

bool FileHandle::OpenDescriptor(const std::string& path, int flags, Hold hold) {
    constexpr int kAttempts = 10;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (!HoldDescriptor(path, flags, hold)) return false;
        // Between the open and the hold the file may have been deleted or replaced. What would then
        // be written to it nobody could find.
        if (IsAt(path)) return true;
    }
    return Fail(FileOpenError::kInUse);
}

bool FileHandle::IsAt(const std::string& path) const {
    struct stat held {};
    struct stat named {};
    return fstat(descriptor, &held) == 0 && stat(path.c_str(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

bool FileHandle::HoldDescriptor(const std::string& path, int flags, Hold hold) {
    Close();
    openError = FileOpenError::kNone;
    ranOutOfSpace = false;
    do {
        descriptor = open(path.c_str(), flags | kCommonFlags, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Fail(ErrorOfOpen(errno));

    struct stat status {};
    if (fstat(descriptor, &status) != 0) return Fail(FileOpenError::kInaccessible);
    if (!S_ISREG(status.st_mode)) return Fail(FileOpenError::kNotAFile);

    const int operation = (hold == Hold::kExclusive ? LOCK_EX : LOCK_SH) | LOCK_NB;
    while (flock(descriptor, operation) != 0) {
        if (errno == EINTR) continue;
        return Fail(errno == EWOULDBLOCK ? FileOpenError::kInUse : FileOpenError::kInaccessible);
    }
    return true;
}

bool FileHandle::Create(const std::string& path) {
    // Without O_TRUNC: nothing may happen to the file before it is ours.
    if (!OpenDescriptor(path, O_RDWR | O_CREAT, Hold::kExclusive)) return false;
    return Truncate() || Fail(FileOpenError::kInaccessible);
}

bool FileHandle::Open(const std::string& path) {
    return OpenDescriptor(path, O_RDWR, Hold::kExclusive);
}

bool FileHandle::OpenOrMake(const std::string& path) {
    return OpenDescriptor(path, O_RDWR | O_CREAT, Hold::kExclusive);
}

bool FileHandle::OpenShared(const std::string& path) {
    return OpenDescriptor(path, O_RDONLY, Hold::kShared);
}

void FileHandle::Close() {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
    position = 0;
}

bool FileHandle::Seek(std::uint64_t newPosition) {
    if (!IsOpen() || newPosition > kLargestPosition) return false;
    position = newPosition;
    return true;
}

std::uint64_t FileHandle::Size() const {
    struct stat status {};
    if (!IsOpen() || fstat(descriptor, &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

bool FileHandle::Read(void* buffer, std::uint32_t count, std::uint32_t& moved) {
    moved = 0;
    if (!IsOpen()) return false;
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    while (moved < count) {
        const ssize_t got =
            pread(descriptor, bytes + moved, count - moved, static_cast<off_t>(position));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) break;
        moved += static_cast<std::uint32_t>(got);
        position += static_cast<std::uint64_t>(got);
    }
    return true;
}

bool FileHandle::Write(const void* buffer, std::uint32_t count, std::uint32_t& moved) {
    moved = 0;
    ranOutOfSpace = false;
    if (!IsOpen()) return false;
    const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
    while (moved < count) {
        const ssize_t put =
            pwrite(descriptor, bytes + moved, count - moved, static_cast<off_t>(position));
        if (put < 0 && errno == EINTR) continue;
        // A write that takes nothing would be repeated for ever.
        if (put <= 0) return FailToStore(put < 0 ? errno : 0);
        moved += static_cast<std::uint32_t>(put);
        position += static_cast<std::uint64_t>(put);
    }
    return true;
}

bool FileHandle::Reserve(std::uint64_t size) {
    if (!IsOpen() || size > kLargestPosition) return false;
    const std::uint64_t present = Size();
    if (size <= present) return true;
    int error = 0;
    do {
        error = posix_fallocate(descriptor, static_cast<off_t>(present),
                                static_cast<off_t>(size - present));
    } while (error == EINTR);
    return error == 0;
}

bool FileHandle::Truncate() {
    ranOutOfSpace = false;
    if (!IsOpen()) return false;
    while (ftruncate(descriptor, static_cast<off_t>(position)) != 0) {
        if (errno != EINTR) return FailToStore(errno);
    }
    return true;
}

}  // namespace marvolen

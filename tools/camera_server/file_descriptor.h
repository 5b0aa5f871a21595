#pragma once

#include <unistd.h>
#include <utility>

namespace marvolen {

// Owns a file descriptor; -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : fd(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd, other.fd);
        return *this;
    }
    ~FileDescriptor() {
        if (fd >= 0) ::close(fd);
    }

    int Get() const { return fd; }
    bool IsOpen() const { return fd >= 0; }

private:
    int fd = -1;
};

}  // namespace marvolen

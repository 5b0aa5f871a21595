#include "config/replace_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace marvolen {
namespace {

namespace fs = std::filesystem;

// The file that a chain of symbolic links leads to, which needn't exist.
fs::path TargetOf(fs::path path) {
    constexpr int kMaxLinks = 40;
    std::error_code error;
    for (int i = 0; i < kMaxLinks && fs::is_symlink(path, error); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

class Descriptor {
public:
    explicit Descriptor(int opened) : descriptor(opened) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return descriptor >= 0; }
    int Get() const { return descriptor; }
    bool Close() {
        const int closed = descriptor < 0 ? 0 : close(descriptor);
        descriptor = -1;
        return closed == 0;
    }

    // Writes all bytes and waits until the disk has them.
    bool Store(std::span<const char> bytes) {
        while (!bytes.empty()) {
            const ssize_t put = write(descriptor, bytes.data(), bytes.size());
            if (put < 0 && errno == EINTR) continue;
            if (put <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(put));
        }
        return fsync(descriptor) == 0;
    }

private:
    int descriptor;
};

// On a full disk the old file's blocks are still there to be written to, so it is cut last.
bool WriteOver(const fs::path& path, std::span<const char> bytes) {
    Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    return file.IsOpen() && file.Store(bytes) &&
           ftruncate(file.Get(), static_cast<off_t>(bytes.size())) == 0 && file.Close();
}

// A name in a folder is on the disk when the folder is.
void SyncFolder(const fs::path& folder) {
    Descriptor opened(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) fsync(opened.Get());
}

// A temporary file beside the one to be replaced.
struct Beside {
    std::string name;      // empty: there is none
    bool refused = false;  // and there can't be one like the old file
};

// One name for all times, so that programs that are killed leave one file at most.
int MakeTemporary(const std::string& name) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const int made = open(name.c_str(), kFlags, 0600);
    if (made >= 0 || errno != EEXIST || unlink(name.c_str()) != 0) return made;
    return open(name.c_str(), kFlags, 0600);
}

Beside WriteBeside(const fs::path& path, const struct stat* old, std::span<const char> bytes) {
    fs::path hidden = path.parent_path() / ".";
    hidden += path.filename();
    const std::string name = hidden += ".tmp";
    Descriptor file(MakeTemporary(name));
    if (!file.IsOpen()) return {{}, errno == EACCES || errno == EPERM || errno == EROFS};
    // The owner first, for changing it may take permissions away.
    const bool refused =
        old != nullptr && (((old->st_uid != geteuid() || old->st_gid != getegid()) &&
                            fchown(file.Get(), old->st_uid, old->st_gid) != 0) ||
                           fchmod(file.Get(), old->st_mode & 07777) != 0);
    if (!refused && file.Store(bytes) && file.Close()) return {name, false};
    unlink(name.c_str());
    return {{}, refused};
}

}  // namespace

bool ReplaceFile(const std::string& path, std::span<const char> bytes) {
    const fs::path target = TargetOf(path);
    struct stat old {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && (!S_ISREG(old.st_mode) || access(target.c_str(), W_OK) != 0)) return false;
    Beside made{{}, exists && old.st_nlink > 1};
    if (!made.refused) made = WriteBeside(target, exists ? &old : nullptr, bytes);
    if (made.refused) return exists && WriteOver(target, bytes);
    if (made.name.empty()) return false;
    if (rename(made.name.c_str(), target.c_str()) != 0) {
        unlink(made.name.c_str());
        return false;
    }
    SyncFolder(target.parent_path());
    return true;
}

}  // namespace marvolen

#include "record/basic_file.h"

namespace marvolen {

BasicFile::~BasicFile() = default;

bool BasicFile::Create(const std::string& path) {
    return handle.Create(path);
}

bool BasicFile::Open(const std::string& path) {
    return handle.Open(path);
}

void BasicFile::Close() {
    handle.Close();
}

bool BasicFile::Seek(std::uint64_t pos) {
    return handle.Seek(pos);
}

std::uint64_t BasicFile::Tell() {
    return handle.Tell();
}

std::uint64_t BasicFile::GetSize() {
    return handle.Size();
}

bool BasicFile::Read(void* buf, std::uint32_t n, std::uint32_t* got) {
    std::uint32_t scratch = 0;
    return handle.Read(buf, n, got != nullptr ? *got : scratch);
}

bool BasicFile::Write(const void* buf, std::uint32_t n, std::uint32_t* put) {
    std::uint32_t scratch = 0;
    return handle.Write(buf, n, put != nullptr ? *put : scratch);
}

}  // namespace marvolen

#pragma once

// A folder of its own for a test, made the current directory while the object lives.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdlib.h>
#include <string>

namespace marvolen::test {

class TemporaryFolder {
public:
    TemporaryFolder() : before(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "marvolen_XXXXXX").string();
        if (!mkdtemp(name.data())) ADD_FAILURE() << "no temporary folder";
        folder = name;
        std::filesystem::current_path(folder);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before, ignored);
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return folder; }

private:
    const std::filesystem::path before;
    std::filesystem::path folder;
};

inline std::string ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace marvolen::test

#include "platform/native_path.h"

#include <cctype>
#include <filesystem>
#include <system_error>
#include <vector>

namespace marvolen {
namespace {

bool HasDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0]));
}

std::string DriveFolder(char letter) {
    return std::string("drive_") +
           static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

}  // namespace

std::string MapDrivePath(std::string_view path) {
    if (!HasDrive(path)) return std::string(path);
    std::vector<std::string_view> parts;
    std::string_view rest = path.substr(2);
    while (!rest.empty()) {
        const std::size_t end = rest.find_first_of("\\/");
        const std::string_view part = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        if (part.empty() || part == ".") continue;
        if (part != "..") {
            parts.push_back(part);
        } else if (!parts.empty()) {
            parts.pop_back();
        }
    }
    std::string mapped = DriveFolder(path[0]);
    for (const std::string_view part : parts) mapped.append("/").append(part);
    return mapped;
}

std::string NativePath(std::string_view path) {
    if (HasDrive(path)) {
        std::error_code ignored;  // shows when the file is opened
        std::filesystem::create_directory(DriveFolder(path[0]), ignored);
    }
    return MapDrivePath(path);
}

}  // namespace marvolen

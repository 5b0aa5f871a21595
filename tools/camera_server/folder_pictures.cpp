#include "tools/camera_server/folder_pictures.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace marvolen {
namespace {

bool HasJpegName(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".jpg" || extension == ".jpeg";
}

std::vector<std::uint8_t> ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

bool FolderPictures::Load(const std::string& folder) {
    pictures.clear();
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (HasJpegName(entry->path())) paths.push_back(entry->path());
    }
    std::sort(paths.begin(), paths.end());
    for (const auto& path : paths) {
        std::vector<std::uint8_t> jpeg = ReadBytes(path);
        if (jpeg.size() >= 4 && jpeg[0] == 0xFF && jpeg[1] == 0xD8) {
            pictures.push_back(MakePicture(std::move(jpeg)));
        }
    }
    return !pictures.empty();
}

PicturePtr FolderPictures::At(const View& view, std::uint64_t position) {
    if (pictures.empty()) return nullptr;
    const int offset = view.channel * 7 + view.camera * 3;
    return pictures[(position + static_cast<std::uint64_t>(offset)) % pictures.size()];
}

}  // namespace marvolen

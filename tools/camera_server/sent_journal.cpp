#include "tools/camera_server/sent_journal.h"

#include <filesystem>
#include <fstream>

namespace marvolen {
namespace {

std::string HashText(std::uint64_t hash) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

}  // namespace

std::string IndexLine(const SentPicture& sent) {
    return std::to_string(sent.connection) + ' ' + std::to_string(sent.number) + ' ' +
           (sent.stamped ? StampText(sent.stamp) : "- - - -") + ' ' +
           std::to_string(sent.picture->jpeg.size()) + ' ' + HashText(sent.picture->hash);
}

bool SentJournal::Open(const std::string& directory, int channel, bool keepInMemory) {
    keep = keepInMemory;
    if (directory.empty()) return true;
    const std::filesystem::path folder(directory);
    std::error_code error;
    std::filesystem::create_directories(folder / "pictures", error);
    if (error) return false;
    pictureFolder = (folder / "pictures").string();
    char name[32];
    std::snprintf(name, sizeof name, "ch%02d.index", channel + 1);
    index.reset(std::fopen((folder / name).c_str(), "w"));
    return index != nullptr;
}

void SentJournal::Add(const SentPicture& sent) {
    if (keep) pictures.push_back(sent);
    if (!index) return;
    if (stored.insert(sent.picture->hash).second) {
        std::ofstream file(pictureFolder + '/' + HashText(sent.picture->hash) + ".jpg",
                           std::ios::binary);
        file.write(reinterpret_cast<const char*>(sent.picture->jpeg.data()),
                   static_cast<std::streamsize>(sent.picture->jpeg.size()));
    }
    std::fputs((IndexLine(sent) + '\n').c_str(), index.get());
    std::fflush(index.get());
}

}  // namespace marvolen

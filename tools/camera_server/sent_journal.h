#pragma once

// Keeps one channel's account of sent pictures: in memory, in files, or both.

#include "tools/camera_server/sent_picture.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace marvolen {

class SentJournal {
public:
    // Starts files for channel (zero-based) in directory, which is made if need be: the index
    // "chNN.index", emptied, and a folder "pictures" that receives every distinct picture once as
    // HASH.jpg. An empty directory: no files. False when they can't be made.
    bool Open(const std::string& directory, int channel, bool keepInMemory);

    // Index lines are flushed one by one, each after its picture is on disk, so that whoever reads
    // the index while the server runs finds whole lines (but possibly a last one without its line
    // end) and every picture they name. Failing writes are not noticed.
    void Add(const SentPicture& sent);

    const std::vector<SentPicture>& Pictures() const { return pictures; }

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool keep = false;
    std::vector<SentPicture> pictures;
    std::unique_ptr<std::FILE, FileCloser> index;
    std::string pictureFolder;
    std::unordered_set<std::uint64_t> stored;
};

}  // namespace marvolen

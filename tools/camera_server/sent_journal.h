#pragma once

// The account of what a camera handed to its socket, the truth that recordings are compared with:
// kept in memory, in files, or both.

#include "tools/camera_server/picture_source.h"
#include "tools/camera_server/picture_stamp.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace marvolen {

// A picture whose part, closing boundary included, the socket has taken completely. Pictures that
// were skipped for a slow client, or cut off by the end of a connection, are never listed.
struct SentPicture {
    std::uint64_t connection = 0;  // 1, 2, ... in the order the server accepted them
    std::uint64_t number = 0;      // 1, 2, ... of those sent on this connection
    bool stamped = true;      // false: the part had no stamp line, or the single form was asked
    PictureStamp stamp = {};  // as sent, also when a fault made it jump
    View view = {};
    PicturePtr picture = {};  // the bytes as sent, also when a fault damaged them
};

// The picture's line in an index file, without line end: eight fields separated by one blank,
//   connection number date time hundredths counter length hash
// the first two and the length decimal, the stamp's four as they went over the wire ("-" four times
// when there was no stamp), the hash 16 hexadecimal digits.
std::string IndexLine(const SentPicture& sent);

// One channel's account.
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

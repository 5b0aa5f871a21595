#pragma once

// The account of what a camera handed to its socket, the truth that recordings are compared with.

#include "tools/camera_server/picture_source.h"
#include "tools/camera_server/picture_stamp.h"

#include <cstdint>
#include <string>

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

}  // namespace marvolen

#pragma once

// The camera's side of the wire, byte for byte (docs/camera_protocol.md): heads of answers, and the
// parts of the multipart stream with what a fault makes of them. Pure: a fault, a picture and a
// stamp in, bytes out.

#include "tools/camera_server/fault.h"
#include "tools/camera_server/picture_source.h"
#include "tools/camera_server/picture_stamp.h"

#include <cstdint>
#include <string>

namespace marvolen {

// The head of the endless answer, up to and including the first boundary line.
std::string StreamHead();

// The head of the answer that is one picture of length bytes.
std::string SingleHead(std::size_t length);

// A whole answer without pictures: 400, 401, 404, 405, or the web page of a foreign content type
// for 200.
std::string TextAnswer(int status);

// What goes over the wire for one picture: before, the picture's bytes, after. The part is closed
// by a boundary line of its own, so the receiver knows the picture's end as soon as it is sent.
struct AnswerPart {
    std::string before = {};
    PicturePtr picture = {};  // may be null; as it goes out, so a fault may have replaced it
    std::string after = {};
    bool stamped = false;
    PictureStamp stamp = {};  // as it goes out
};

// The n-th part (from 1) of a stream under the fault. The same arguments give the same bytes.
AnswerPart MakeStreamPart(const Fault& fault, std::uint64_t n, const PicturePtr& picture,
                          const PictureStamp& stamp);

// The single form's only part, head included. Faults that damage pictures damage it as the first.
AnswerPart MakeSinglePart(const Fault& fault, const PicturePtr& picture);

}  // namespace marvolen

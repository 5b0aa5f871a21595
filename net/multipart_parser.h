#pragma once

// MultipartParser: cuts the pictures out of a camera server's answer.
//
// It owns no socket: bytes go in, in pieces of any size, and finished frames come out through a
// callback. Where the pieces are cut makes no difference to the frames. Picture bytes are collected
// straight into the current frame's slot, each copied exactly once; earlier input is never looked
// at again. docs/camera_protocol.md describes the answer byte by byte.
//
// What exceeds the current frame's capacity is dropped: a part, its stamp or the content type, and
// the stream goes on at the next "Stamp:"; a single picture, and with it the answer's only one.
//
// A parser serves one answer, on the thread that feeds it. Nothing is reported but pictures.

#include "net/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace marvolen {

class MultipartParser {
public:
    // Receives each finished frame with its ownership. It gives the parser the frame for the next
    // picture with SetBuffer before it returns, and doesn't destroy the parser.
    using PictureFunction = std::function<void(FramePtr frame)>;

    // Takes the first buffer and the callback, and awaits the answer's beginning.
    void Init(FramePtr buffer, PictureFunction pictureFunction);

    // Consumes all of the bytes, calling back for every picture they complete. Ignores them while
    // the parser has no frame.
    void Feed(std::span<const std::uint8_t> bytes);

    // Replaces the frame being filled.
    void SetBuffer(FramePtr buffer);

private:
    enum class State {
        AwaitContentType,
        ReadContentType,
        AwaitSoi,
        ReadToEoi,
        AwaitStamp,
        ReadStamp,
        ReadBody,
        Ignore,
    };
    struct Search {
        std::string_view pattern;
        bool collects;
    };

    static Search SearchOf(State searching);
    void Enter(State newState);
    std::size_t Step(std::span<const std::uint8_t> bytes);
    bool Find(std::string_view pattern, std::span<const std::uint8_t> bytes, std::size_t& consumed);
    void Collect(std::span<const std::uint8_t> bytes);
    void OnMatch();
    void OnContentType();
    void OnStamp();
    void OnBody();
    void HandOver();

    FramePtr frame;  // being filled; replaced after each hand-over
    PictureFunction onPicture;
    State state = State::AwaitContentType;
    std::size_t matchPos = 0;  // bytes of the state's pattern matched so far; survives feeds
};

}  // namespace marvolen

// The answer's two forms follow the multipart media type (RFC 2046, section 5.1) only loosely: what
// is recognised are the byte patterns below and nothing else.

#include "net/multipart_parser.h"

#include "net/stamp_text.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace marvolen {
namespace {

constexpr std::string_view kContentTypeLine = "Content-Type: ";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kSinglePictureType = "image/jpeg";
constexpr std::string_view kStreamType = "multipart/x-mixed-replace;boundary=--myboundary";
constexpr std::string_view kJpegStart = "\xFF\xD8";
constexpr std::string_view kJpegEnd = "\xFF\xD9";
constexpr std::string_view kBoundary = "--myboundary";
constexpr std::string_view kStampLine = "Stamp:";
constexpr std::string_view kStampEnd = "\n\n";

// What follows the picture in a part: a line end, then the boundary.
constexpr std::uint32_t kBodyTail = 2 + kBoundary.size();
static_assert(kBodyTail == 14);

std::string_view TextOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

void MultipartParser::Init(FramePtr buffer, PictureFunction pictureFunction) {
    frame = std::move(buffer);
    onPicture = std::move(pictureFunction);
    Enter(State::AwaitContentType);
}

void MultipartParser::SetBuffer(FramePtr buffer) {
    frame = std::move(buffer);
}

void MultipartParser::Feed(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty() && state != State::Ignore && frame != nullptr) {
        bytes = bytes.subspan(Step(bytes));
    }
}

MultipartParser::Search MultipartParser::SearchOf(State searching) {
    switch (searching) {
        case State::AwaitContentType:
            return {kContentTypeLine, false};
        case State::ReadContentType:
            return {kLineEnd, true};
        case State::AwaitSoi:
            return {kJpegStart, false};
        case State::ReadToEoi:
            return {kJpegEnd, true};
        case State::AwaitStamp:
            return {kStampLine, false};
        case State::ReadStamp:
            return {kStampEnd, true};
        case State::ReadBody:
            return {kBoundary, true};
        case State::Ignore:
            break;
    }
    return {};
}

void MultipartParser::Enter(State newState) {
    state = newState;
    matchPos = 0;
}

// Runs the current state over the bytes and returns how many it consumed: all of them, or those up
// to the end of a match, or those that the frame still had room for.
std::size_t MultipartParser::Step(std::span<const std::uint8_t> bytes) {
    const auto [pattern, collects] = SearchOf(state);
    // There is a frame: Feed ends without one. NOLINTNEXTLINE(clang-analyzer-cplusplus.Move)
    const std::size_t room = collects ? frame->Capacity() - frame->Length() : bytes.size();
    const auto searched = bytes.first(std::min(room, bytes.size()));
    std::size_t consumed = 0;
    const bool found = Find(pattern, searched, consumed);
    if (collects) Collect(bytes.first(consumed));
    if (found) {
        OnMatch();
    } else if (consumed < bytes.size()) {
        // The next byte has no room.
        Enter(state == State::ReadToEoi ? State::Ignore : State::AwaitStamp);
    }
    return consumed;
}

// Goes on searching for the pattern. A failed attempt restarts with at most its last byte, so an
// occurrence that overlaps a failed one by more isn't found ("---myboundary" hides the boundary);
// in exchange nothing has to be looked at twice. Between attempts the bytes that can't begin one
// are skipped as a block, which changes nothing in what is found.
bool MultipartParser::Find(std::string_view pattern, std::span<const std::uint8_t> bytes,
                           std::size_t& consumed) {
    const auto first = static_cast<std::uint8_t>(pattern.front());
    std::size_t position = 0;
    while (position < bytes.size()) {
        if (matchPos == 0) {
            const void* const start =
                std::memchr(bytes.data() + position, first, bytes.size() - position);
            if (start == nullptr) break;
            position =
                static_cast<std::size_t>(static_cast<const std::uint8_t*>(start) - bytes.data());
        }
        const std::uint8_t byte = bytes[position++];
        if (byte != static_cast<std::uint8_t>(pattern[matchPos])) {
            matchPos = byte == first ? 1 : 0;
        } else if (++matchPos == pattern.size()) {
            matchPos = 0;
            consumed = position;
            return true;
        }
    }
    consumed = bytes.size();
    return false;
}

void MultipartParser::Collect(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    std::memcpy(frame->Data() + frame->Length(), bytes.data(), bytes.size());
    frame->SetLength(frame->Length() + static_cast<std::uint32_t>(bytes.size()));
}

void MultipartParser::OnMatch() {
    switch (state) {
        case State::AwaitContentType:
            frame->SetLength(0);
            Enter(State::ReadContentType);
            break;
        case State::ReadContentType:
            OnContentType();
            break;
        case State::AwaitSoi:
            frame->SetLength(0);
            if (frame->Capacity() < kJpegStart.size()) {
                Enter(State::Ignore);
                break;
            }
            // The start marker may have come in two feeds; it is known, so take it from here.
            Collect({reinterpret_cast<const std::uint8_t*>(kJpegStart.data()), kJpegStart.size()});
            Enter(State::ReadToEoi);
            break;
        case State::ReadToEoi:
            Enter(State::Ignore);
            HandOver();
            break;
        case State::AwaitStamp:
            frame->SetLength(0);
            Enter(State::ReadStamp);
            break;
        case State::ReadStamp:
            OnStamp();
            break;
        case State::ReadBody:
            OnBody();
            break;
        case State::Ignore:
            break;
    }
}

void MultipartParser::OnContentType() {
    const std::string_view value = TextOf(frame->Picture());
    if (value.starts_with(kSinglePictureType)) {
        Enter(State::AwaitSoi);
    } else if (value.starts_with(kStreamType)) {
        Enter(State::AwaitStamp);
    } else {
        Enter(State::Ignore);
    }
}

void MultipartParser::OnStamp() {
    frame->SetTime(ParseStamp(TextOf(frame->Picture())));
    frame->SetLength(0);
    Enter(State::ReadBody);
}

void MultipartParser::OnBody() {
    Enter(State::AwaitStamp);
    if (frame->Length() < kBodyTail) return;
    frame->SetLength(frame->Length() - kBodyTail);
    HandOver();
}

void MultipartParser::HandOver() {
    onPicture(std::move(frame));
}

}  // namespace marvolen

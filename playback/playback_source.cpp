#include "playback/playback_source.h"

#include <new>
#include <utility>

namespace marvolen {

bool PlaybackSource::Open(const ChannelInfo& record, FrameReceiver* target) {
    Close();
    std::unique_ptr<RecordPlayer> opening(new (std::nothrow) RecordPlayer);
    if (!opening || !opening->Open(record)) return false;
    player = std::move(opening);
    player->SetNext(target);
    target->SetNext(&capture);
    return true;
}

void PlaybackSource::Close() {
    if (!player) return;
    player->ClearChain();
    player.reset();
}

bool PlaybackSource::StepForward() {
    return player && player->StepForward();
}

bool PlaybackSource::StepBack() {
    return player && player->StepBack();
}

bool PlaybackSource::ShowPosition(std::uint32_t index) {
    return player && player->SeekTo(index) && player->StepForward();
}

std::uint32_t PlaybackSource::RecordCount() {
    return player ? player->RecordCount() : 0;
}

}  // namespace marvolen

#include "app/live_channels.h"

#include "net/channel_link.h"
#include "net/frame_receiver.h"
#include "platform/text_field.h"

#include <cstdio>
#include <utility>

namespace marvolen {
namespace {

ChannelInfo& InfoOf(int k) {
    return g_channelInfo[static_cast<std::size_t>(k)];
}

}  // namespace

LiveChannels::LiveChannels(LiveChannelsView& itsView, ChannelTimers& itsTimers,
                           NetEventOwner& itsOwner, Clock itsClock)
    : view(itsView), timers(itsTimers), owner(itsOwner), clock(std::move(itsClock)) {
    for (int k = 0; k < kChannelCount; ++k) {
        Recorder(k).SetTroubleHandler([this, k](RecordTrouble now) { NoteTrouble(k, now); });
    }
}

bool LiveChannels::OpenChannel(int k) {
    ChannelInfo& info = InfoOf(k);
    if (!view.ReopenPane(k, info)) return false;
    ChannelRecorder& recorder = Recorder(k);
    if (FieldText(info.host).empty()) {
        recorder.SetRecording(false);  // ends the trouble of a host it had
        return true;
    }
    if (!recorder.Open(&info, &view.PaneReceiver(k), &owner)) return false;
    recorder.Connect();  // a failure is the watchdog's
    recorder.SetRecording(IsRecording(k));
    return true;
}

void LiveChannels::CloseChannel(int k, CloseFlag flag) {
    Recorder(k).Close(flag);
    view.ShowConnected(k, false);  // a closed connection reports nothing any more
}

void LiveChannels::StartAllChannels() {
    timers.SetChannelTimer(kWatchdogTimer, kWatchdogMilliseconds);
    for (int k = 0; k < kChannelCount; ++k) {
        if (!OpenChannel(k)) StopAllChannels(CloseFlag::Ended);
    }
}

void LiveChannels::StopAllChannels(CloseFlag flag) {
    timers.KillChannelTimer(kWatchdogTimer);
    for (int k = 0; k < kChannelCount; ++k) {
        if (Recorder(k).IsOpen()) CloseChannel(k, flag);
        timers.KillChannelTimer(static_cast<std::uint32_t>(k));
    }
}

void LiveChannels::SetRecording(int k, bool on) {
    channels[Index(k)].recording = on;
    Recorder(k).SetRecording(on);
    view.ShowRecording(k, on);
}

void LiveChannels::OnNetEvent(int code, const ChannelInfo& info) {
    // By position, not by the stored channelIndex, which a damaged settings file may have spoilt.
    const int k = ChannelNumber(&info) - 1;
    // Posted by a connection that has been closed since: it must not open the channel again.
    if (!Recorder(k).IsOpen()) return;
    if (code == NETEVENT_CONNECT) {
        view.ShowConnected(k, true);
        view.AddLogEntry(info, "Network connect.");
    } else if (code == NETEVENT_CLOSE || code == NETEVENT_ERROR) {
        CloseChannel(k, CloseFlag::Ended);
        timers.SetChannelTimer(static_cast<std::uint32_t>(k), kReconnectMilliseconds);
        view.AddLogEntry(info, code == NETEVENT_CLOSE ? "Network close." : "Network error.");
    }
}

void LiveChannels::OnTimer(std::uint32_t id) {
    if (id == kWatchdogTimer) return OnWatchdog();
    // A failure is left to the next watchdog tick or network event.
    timers.KillChannelTimer(id);
    if (id < kChannelCount) OpenChannel(static_cast<int>(id));
}

// Every silent channel is restarted, one whose connect attempt is still pending too.
void LiveChannels::OnWatchdog() {
    for (int k = 0; k < kChannelCount; ++k) {
        const ChannelInfo& info = InfoOf(k);
        if (Recorder(k).TakeFrameCount() != 0) continue;
        if (FieldText(info.host).empty()) continue;
        view.AddLogEntry(info, "Unknown Error.");
        CloseChannel(k, CloseFlag::Ordered);
        OpenChannel(k);
        timers.KillChannelTimer(static_cast<std::uint32_t>(k));
    }
}

// The reason may change within a spell of trouble.
void LiveChannels::NoteTrouble(int k, RecordTrouble trouble) {
    Channel& channel = channels[Index(k)];
    const RecordTrouble before = std::exchange(channel.trouble, trouble);
    if (trouble == before) return;
    if (trouble == RecordTrouble::None) return view.ShowTrouble(k, {});
    const std::string reason = TroubleText(trouble);
    if (before == RecordTrouble::None) {
        channel.troubleSince = clock();
        const std::string path(FieldText(InfoOf(k).recordPath));
        std::fprintf(stderr, "NET.%d: %s: %s\n", k + 1, reason.c_str(), path.c_str());
    }
    view.ShowTrouble(k, reason + ", since " + FormatTime(channel.troubleSince));
}

}  // namespace marvolen

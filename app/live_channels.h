#pragma once

// LiveChannels: the sixteen channels while they are watched. It holds their recorders, knows what
// each is wanted to record, opens a channel anew 5000 ms after its connection closed or failed, and
// restarts every channel that delivered no frame for 30000 ms. It knows no widget: what is to be
// seen goes to a LiveChannelsView, and time comes from ChannelTimers. Interface thread only.
//
// A channel k (0 to 15) is closed; or open and connecting; or connected; or closed with its timer k
// running, which opens it anew. Whether it records is kept here and outlives every reopening.
//
// A channel that can't record is in trouble until a picture is written again or, when it isn't
// wanted to record, until its file can be opened. The view is told what and since when, and
// standard error gets a line when such a spell begins.

#include "config/channel_info.h"
#include "platform/system_time.h"
#include "record/channel_recorder.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace marvolen {

class FrameReceiver;
class NetEventOwner;

inline constexpr std::uint32_t kReconnectMilliseconds = 5000;

// The watchdog's timer, beside the reconnect timers 0 to 15, and its period.
inline constexpr std::uint32_t kWatchdogTimer = 17;
inline constexpr std::uint32_t kWatchdogMilliseconds = 30000;

// Where the channels are seen.
class LiveChannelsView {
public:
    // Closes pane k and opens it anew with the channel's name. False when it can't draw.
    virtual bool ReopenPane(int k, const ChannelInfo& info) = 0;

    // Pane k as a member of its channel's chain.
    virtual FrameReceiver& PaneReceiver(int k) = 0;

    // Pane k shows whether its channel is connected, and whether it is wanted to record.
    virtual void ShowConnected(int k, bool connected) = 0;
    virtual void ShowRecording(int k, bool recording) = 0;

    // Pane k shows what keeps its channel from recording and since when, in plain words; empty for
    // nothing. Must not open or close a channel.
    virtual void ShowTrouble(int k, const std::string& text) = 0;

    // Adds a line about a channel to the message log.
    virtual void AddLogEntry(const ChannelInfo& info, std::string_view message) = 0;

protected:
    ~LiveChannelsView() = default;
};

// Timers that call LiveChannels::OnTimer: a window's in the program.
class ChannelTimers {
public:
    // Every milliseconds until killed; a running one starts anew.
    virtual void SetChannelTimer(std::uint32_t id, std::uint32_t milliseconds) = 0;

    // The timer doesn't tick again. One that isn't running is ignored.
    virtual void KillChannelTimer(std::uint32_t id) = 0;

protected:
    ~ChannelTimers() = default;
};

class LiveChannels {
public:
    // Tells the local time.
    using Clock = std::function<SYSTEMTIME()>;

    // All closed, none wanted to record. Channels are those of g_channelInfo. The three are
    // borrowed for the object's life; owner posts the events it is told on to OnNetEvent.
    LiveChannels(LiveChannelsView& itsView, ChannelTimers& itsTimers, NetEventOwner& itsOwner,
                 Clock itsClock = LocalTimeNow);

    // Opens pane k and, when the channel has a host, its recorder, and connects. A channel that was
    // recording goes on recording. False when the pane or the recorder can't be opened.
    bool OpenChannel(int k);

    // Ends channel k's connection and closes its record file. Its pane stays open.
    void CloseChannel(int k, CloseFlag flag);

    // Starts the watchdog and opens every channel. A channel that can't be opened closes those
    // opened before it and stops the watchdog; the ones after it are opened all the same.
    void StartAllChannels();

    // Stops the watchdog, closes every channel and forgets every reconnect that is due.
    void StopAllChannels(CloseFlag flag);

    // Whether channel k is wanted to record, connected or not.
    void SetRecording(int k, bool on);
    bool IsRecording(int k) const { return channels[Index(k)].recording; }

    // An event (NETEVENT_...) that the owner was told, in a later turn of the event loop. One of a
    // channel that is closed is ignored; one of a connection that was replaced since counts for the
    // channel's present one.
    void OnNetEvent(int code, const ChannelInfo& info);

    // A tick of the timer id.
    void OnTimer(std::uint32_t id);

    ChannelRecorder& Recorder(int k) { return channels[Index(k)].recorder; }

private:
    struct Channel {
        ChannelRecorder recorder;
        bool recording = false;  // wanted; the recorder hears of it whenever it is opened
        RecordTrouble trouble = RecordTrouble::None;  // as it is shown
        SYSTEMTIME troubleSince{};                    // when the present spell of trouble began
    };

    static std::size_t Index(int k) { return static_cast<std::size_t>(k); }
    void OnWatchdog();
    void NoteTrouble(int k, RecordTrouble trouble);

    LiveChannelsView& view;
    ChannelTimers& timers;
    NetEventOwner& owner;
    const Clock clock;
    std::array<Channel, kChannelCount> channels;
};

}  // namespace marvolen

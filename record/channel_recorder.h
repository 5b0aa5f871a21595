#pragma once

// ChannelRecorder: a channel that is open. It makes the channel's source and writer, links them
// with the channel's live pane into one chain,
//
//   StreamSource -> VideoPane -> ChannelRecorder -> RecordWriter
//
// holds the record file open, whether or not it records, and posts the channel's network events to
// the owner. While recording it passes on the frames that carry a time stamp; it counts all
// of them, for the watchdog. Interface thread.

#include "config/channel_info.h"
#include "net/channel_link.h"
#include "net/frame_receiver.h"
#include "record/record_trouble.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace marvolen {

class RecordWriter;
class StreamSource;

// Why a channel is closed. Both close it the same way.
enum class CloseFlag : std::int32_t {
    Ended = 0,    // its connection ended or its start failed
    Ordered = 1,  // the program wants it closed
};

// Frames of a channel since the program's start.
struct FrameCounts {
    std::uint64_t received = 0;
    std::uint64_t due = 0;       // those that had a time while the channel was recording
    std::uint64_t recorded = 0;  // those of them that were written
};

class ChannelRecorder : public FrameReceiver, public ChannelLink {
public:
    // Closed.
    ChannelRecorder();

    // Closes.
    ~ChannelRecorder() override;

    // Builds the chain through pane and opens or creates the channel's record file. Recording is
    // off, nothing is connected yet. The arguments are borrowed until Close; eventOwner hears of
    // the channel's network events. False, and closed, when the source can't be made or the record
    // file can be neither reopened nor created.
    bool Open(ChannelInfo* channel, FrameReceiver* pane, NetEventOwner* eventOwner) override;

    // Starts the chain and the connection. False when closed, when a receiver refuses, or when the
    // connect attempt fails at once.
    bool Connect();

    // Whether stamped frames are written from now on. Switching it off ends the trouble: what isn't
    // to be written can't fail.
    void SetRecording(bool on);

    // Frames that reached the recorder since the last call; 0 while closed.
    std::uint32_t TakeFrameCount();

    // All frames so far, those before the last Open included.
    const FrameCounts& Counts() const { return counts; }

    // Between a successful Open and Close.
    bool IsOpen() const { return opened; }

    // The connection's state (net/stream_source.h); false while closed.
    bool IsConnected() const;
    bool HasSettled() const;

    // What kept the channel's file from being opened, or its latest frame from being written. It
    // lasts until a frame is written or SetRecording ends it, through Close and Open: that a file
    // can be opened doesn't show that it can be written.
    RecordTrouble Trouble() const { return trouble; }

    // handler is called with each new value of Trouble, from within Open, SetRecording and Deliver;
    // an empty one is not. It must not open or close the recorder.
    void SetTroubleHandler(std::function<void(RecordTrouble)> handler) {
        troubleHandler = std::move(handler);
    }

    // Ends the connection, unlinks the chain and closes the record file. Harmless when closed.
    virtual void Close(CloseFlag flag);

    // Counts the frame, and passes it on to the writer while recording if it has a time.
    void Deliver(FramePtr frame) override;

private:
    using ChannelLink::Close;

    void NoteTrouble(RecordTrouble now);

    std::unique_ptr<StreamSource> source;  // null while closed
    std::unique_ptr<RecordWriter> writer;  // null while closed
    bool recording = false;                // frames are written
    std::uint32_t frameCount = 0;          // since the last TakeFrameCount
    FrameCounts counts;
    bool opened = false;
    RecordTrouble trouble = RecordTrouble::None;
    std::function<void(RecordTrouble)> troubleHandler;
};

}  // namespace marvolen

#pragma once

// FrameReceiver: a node of the chain that pictures travel along.
//
// A chain's head produces frames and hands them to the next receiver with Forward. Every receiver
// owns the frame it is delivered: it forwards the frame, or drops it, which returns the slot to its
// pool. None keeps it beyond its Deliver, so a frame is back in its pool before the producer's call
// into the chain returns.
//
// Receivers are wired, started and unwired by whoever owns them; a receiver owns neither its next
// nor its link. A chain runs on the thread of its producer, the interface thread.

#include "net/video_frame.h"

namespace marvolen {

class ChannelLink;

class FrameReceiver {
public:
    FrameReceiver() = default;
    virtual ~FrameReceiver() = default;
    FrameReceiver(const FrameReceiver&) = delete;
    FrameReceiver& operator=(const FrameReceiver&) = delete;

    // Wires receiver (or none) behind this one. Nothing is started, stopped or freed.
    virtual void SetNext(FrameReceiver* receiver);

    // Unwires the next receiver and returns it; null when there was none.
    virtual FrameReceiver* TakeNext();

    // Starts the receivers behind this one, tail first, then this one, all with the same link
    // (which may be null). False when one of them refuses: none before it is started, those behind
    // it stay started. An override runs this first and does its own work only on success.
    virtual bool Start(ChannelLink* startingLink);

    // Stops this receiver, then those behind it. An override ends its own production first.
    virtual void Stop();

    // Consumes one frame; accepted whether started or not. The base drops it.
    virtual void Deliver(FramePtr frame);

    // Unlinks everything from here to the tail: afterwards no member of the chain has a next.
    void ClearChain();

protected:
    // Delivers the frame to the next receiver; drops it when there is none.
    void Forward(FramePtr frame);

    // Hands an event code (NETEVENT_..., net/channel_link.h) to the link; without one, nothing.
    void PostEvent(int code);

    FrameReceiver* next = nullptr;  // not owned
    ChannelLink* link = nullptr;    // who started the chain, not owned; null while stopped
    bool active = false;            // between a successful Start and the next Stop
};

}  // namespace marvolen

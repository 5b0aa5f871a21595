#pragma once

// Plays a record file to a renderer as the dialog does, with a pane that only decodes.

#include "jpeg/dib_image.h"
#include "platform/text_field.h"
#include "playback/avi_renderer.h"
#include "playback/playback_source.h"

namespace marvolen::test {

class DecodingPane : public FrameReceiver {
public:
    void Deliver(FramePtr frame) override {
        if (image.DecodeJpeg(frame->Data(), frame->Length()) == 1) {
            frame->SetWidth(image.Width());
            frame->SetHeight(image.Height());
        }
        Forward(std::move(frame));
    }

private:
    DibImage image;
};

// Renders every record but the oldest, which stands at no position.
class PlayingHost : public RenderHost {
public:
    // False when there is nothing to play.
    bool Open(std::string_view path) {
        ChannelInfo record{};
        SetFieldText(record.recordPath, path);
        return source.Open(record, &pane) && source.StepForward();
    }
    std::string OutputName() override { return "played.avi"; }
    PlaybackSelection Selection() override {
        return {0, static_cast<std::int32_t>(source.RecordCount()) - 2};
    }
    void EnableControls(bool) override {}
    const CapturedFrame& Show(std::int32_t position) override {
        source.ShowPosition(static_cast<std::uint32_t>(position));
        return source.Captured();
    }
    bool GoesOn(const RenderReport&) override { return true; }
    void Complain(const char*) override {}

private:
    DecodingPane pane;
    PlaybackSource source;
};

}  // namespace marvolen::test

#pragma once

// DrawingThread: decodes and scales one pane's pictures at idle priority, so that the interface
// thread, which is also the network's, never waits for a picture to be decoded.
//
// The interface thread hands over a copy of the newest JPEG picture, and only while the thread is
// free; every other picture is skipped. The thread decodes the copy, stretches it to the size of
// the pane's video area and swaps it in as the current image, which the interface thread only
// blits. At most one picture and one image wait. Once buffers have reached their sizes handing
// over and stretching allocate nothing.
//
// The current image is what the pane shows until another takes its place. It is dropped by Open,
// Close and every change of the view, so that a pane is black until the next picture rather than
// show one that is stale; a picture handed over before the last Open or Close never becomes one.

#include "display/stretch.h"
#include "jpeg/dib_image.h"
#include "platform/thread_annotations.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <thread>
#include <vector>

namespace marvolen {

// What the thread must know of the pane's window.
struct PaneView {
    bool shown = false;  // the pane is visible and its window isn't minimised
    int width = 0;       // the video area in device pixels
    int height = 0;

    bool operator==(const PaneView&) const = default;
};

// Fills the picture from a frame's bytes, which begin with its JPEG data, for a pane that shows it
// like this. Returns whether there is a picture to draw. Its size may be any.
using DecodeFunction = std::function<bool(DibImage& picture, std::span<const std::uint8_t> jpeg,
                                          const PaneView& target)>;

// DibImage::DecodeJpegFor as a DecodeFunction: a picture that is at least twice as large as the
// video area is decoded at half scale, which the eye can't tell from the whole one behind the
// stretch.
bool DecodeJpegFrame(DibImage& picture, std::span<const std::uint8_t> jpeg, const PaneView& target);

class DrawingThread {
public:
    // All operations are the interface thread's.

    // Starts the thread. Both functions are called on it and must not call back into this object:
    // imageFinished when there is an image for AcceptImage, once until that is called; decode for
    // each picture, and it may be slow but must return.
    explicit DrawingThread(std::function<void()> imageFinished,
                           DecodeFunction decode = DecodeJpegFrame);

    // Ends the thread after the decode in progress, if any, and waits for it.
    ~DrawingThread();

    // Tells the thread to end without waiting for it yet, so that threads that end together do it
    // side by side. Afterwards Open fails and pictures are not taken.
    void BeginEnd();

    DrawingThread(const DrawingThread&) = delete;
    DrawingThread& operator=(const DrawingThread&) = delete;

    // Makes ready to draw. The picture of a decode in progress is dropped. False when the thread
    // could not be started or memory is short; it then stays closed.
    bool Open();

    // Releases the picture and what draws it, after the decode in progress if there is one, for
    // which it doesn't wait: a thread of idle priority may take long on a busy machine. Pictures
    // handed over while closed are not decoded.
    void Close();

    // Hands a copy of a JPEG picture to the thread if it is free; otherwise does nothing. Returns
    // whether it did. Allocates only when the picture is the largest yet.
    bool QueuePicture(std::span<const std::uint8_t> jpeg);

    // Tells the thread what the pane looks like from now on. A different view drops the current
    // image. While not shown, pictures are not decoded. Returns whether it was different.
    bool SetView(const PaneView& newView);

    // Whether an image has come since the last call and is still current.
    bool AcceptImage();

    // Calls draw with the current image, if there is one, while the thread can't replace it. draw
    // must not call back into this object.
    template <typename Draw>
    void DrawImage(Draw&& draw) {
        const MutexLock guard(lock);
        if (imageValid) draw(static_cast<const ScreenImage&>(image));
    }

private:
    // What the thread uses without the lock between BeginPicture and EndPicture. Borrowed.
    struct Work {
        std::span<const std::uint8_t> jpeg;
        DibImage* picture = nullptr;
        Stretcher* stretcher = nullptr;
        PaneView target;  // the view when it began
    };

    // The drawing thread's.
    void Run();
    bool WaitForPicture();
    bool BeginPicture(Work& work);
    bool StretchPicture(Work& work);
    bool PublishImage(const PaneView& target);
    void EndPicture();

    void DropPictures() REQUIRES(lock);
    struct Released {
        DibImage picture;
        std::unique_ptr<Stretcher> stretcher;
    };
    Released Release() REQUIRES(lock);

    // Constant after construction.
    const std::function<void()> imageFinished;
    const DecodeFunction decode;

    // The drawing thread's alone: the image being made.
    ScreenImage stretched;

    std::condition_variable_any wake;  // a picture waits, or the thread's end has begun

    Mutex lock;
    bool busy GUARDED_BY(lock) = false;     // from a picture's hand-over until the thread is done
    bool waiting GUARDED_BY(lock) = false;  // the thread hasn't begun with that picture
    bool ending GUARDED_BY(lock) = false;   // BeginEnd was called
    bool opened GUARDED_BY(lock) = false;   // between Open and Close

    // The newest JPEG picture. Written only while the thread isn't busy; the thread reads it
    // without the lock. Grows by whole kilobytes.
    std::vector<std::uint8_t> pictureBuffer GUARDED_BY(lock);

    // Used by the thread without the lock while it is decoding. The stretcher is null while closed.
    bool decoding GUARDED_BY(lock) = false;
    bool releaseDue GUARDED_BY(lock) = false;  // Close came meanwhile: the thread releases both
    DibImage picture GUARDED_BY(lock);         // the last decoded picture
    std::unique_ptr<Stretcher> stretcher GUARDED_BY(lock);

    std::uint32_t generation GUARDED_BY(lock) = 0;        // counts Open and Close
    std::uint32_t queuedGeneration GUARDED_BY(lock) = 0;  // generation at the picture's hand-over
    PaneView view GUARDED_BY(lock);

    ScreenImage image GUARDED_BY(lock);        // the current image
    bool imageValid GUARDED_BY(lock) = false;  // it may be shown
    bool imageNew GUARDED_BY(lock) = false;    // AcceptImage hasn't seen it
    bool notified GUARDED_BY(lock) = false;    // imageFinished was called, AcceptImage not since

    std::thread drawThread;  // last: it uses everything above
};

}  // namespace marvolen

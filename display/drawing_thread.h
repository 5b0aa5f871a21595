#pragma once

// DrawingThread: decodes and scales one pane's pictures at idle priority, so that the interface
// thread, which is also the network's, never waits for a picture to be decoded.
//
// The interface thread hands over a copy of the newest JPEG picture, and only while the thread is
// free; every other picture is skipped. The thread decodes the copy, stretches it to the size of
// the pane's video area and swaps it in as the current image, which the interface thread only
// blits. At most one picture and one image wait. Once buffers have reached their sizes nothing on
// this road allocates.
//
// The current image is what the pane shows until another takes its place. It is dropped by Open,
// Close and every change of the view, so that a pane is black until the next picture rather than
// show one that is stale; a picture handed over before the last Open or Close never becomes one.

#include "display/stretch.h"
#include "jpeg/dib_image.h"
#include "platform/thread_queue.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
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

// Fills the picture from the frame's bytes: 1 when there is a picture to draw. Called on the
// drawing thread.
using DecodeFunction =
    std::function<int(DibImage& picture, const std::uint8_t* bytes, std::size_t count)>;

// DibImage::DecodeJpeg.
int DecodeJpegFrame(DibImage& picture, const std::uint8_t* bytes, std::size_t count);

class DrawingThread {
public:
    // Both are called on the drawing thread and must not call back into this object.
    struct Events {
        std::function<void()> imageFinished;  // there is an image for AcceptImage
        std::function<void()> exited;         // the thread has left its loop; its last call
    };

    // All operations are the interface thread's.

    // Starts the thread. decode is called for each picture; it may be slow but must return.
    explicit DrawingThread(Events events, DecodeFunction decode = DecodeJpegFrame);

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

    // Calls draw with the current image, if there is one, while the thread can't replace it.
    // Returns whether it did. draw must not call back into this object.
    template <typename Draw>
    bool DrawImage(Draw&& draw) {
        const std::lock_guard guard(lock);
        if (!imageValid) return false;
        draw(static_cast<const ScreenImage&>(image));
        return true;
    }

private:
    void Run();
    void DrawPicture();
    bool BeginPicture();
    bool StretchPicture(PaneView& target);
    bool PublishImage(const PaneView& target);
    void EndPicture();
    void DropPictures();
    void Release();

    // Constant after construction.
    const Events events;
    const DecodeFunction decode;

    // The drawing thread's while it is decoding, else the interface thread's.
    std::unique_ptr<Stretcher> drawDib;  // what stretches the picture; none while closed
    DibImage picture;                    // the last decoded picture

    // The drawing thread's alone: the image being made.
    ScreenImage stretched;

    ThreadQueue queue;

    std::mutex lock;
    // Guarded by lock. pictureBuffer is written by the interface thread only while busy is 0 and
    // read by the drawing thread only while it is 1, without the lock.
    std::int32_t busy = 0;  // 1 from the hand-over of a picture until the thread is done with it
    std::vector<std::uint8_t> pictureBuffer;  // the newest JPEG picture; grows by whole kilobytes
    bool ending = false;                      // BeginEnd was called
    bool opened = false;                      // between Open and Close
    bool decoding = false;                    // the thread is using picture and drawDib
    bool releaseDue = false;                  // Close came meanwhile: the thread releases them
    std::uint32_t generation = 0;             // counts Open and Close
    std::uint32_t queuedGeneration = 0;       // generation at the hand-over of the picture
    PaneView view;
    ScreenImage image;        // the current image
    bool imageValid = false;  // image may be shown
    bool imageNew = false;    // AcceptImage hasn't seen it
    bool notified = false;    // imageFinished was called and AcceptImage not since

    std::thread drawThread;  // last: it uses everything above
};

}  // namespace marvolen

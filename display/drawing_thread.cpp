#include "display/drawing_thread.h"

#include "platform/thread_priority.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace marvolen {

int DecodeJpegFrame(DibImage& picture, const std::uint8_t* bytes, std::size_t count) {
    return picture.DecodeJpeg(bytes, count);
}

DrawingThread::DrawingThread(Events threadEvents, DecodeFunction decodeFunction)
    : events(std::move(threadEvents)), decode(std::move(decodeFunction)) {
    try {
        drawThread = std::thread([this] { Run(); });
    } catch (const std::system_error&) {
        // Without a thread Open fails, and the pane stays black.
    }
}

DrawingThread::~DrawingThread() {
    BeginEnd();
    if (drawThread.joinable()) drawThread.join();
}

void DrawingThread::BeginEnd() {
    {
        const std::lock_guard guard(lock);
        DropPictures();
        opened = false;
        ending = true;
    }
    queue.Quit();
    if (drawThread.joinable()) HastenThread(drawThread);
}

bool DrawingThread::Open() {
    const std::lock_guard guard(lock);
    DropPictures();
    opened = false;
    if (!drawThread.joinable() || ending) return false;
    if (!drawDib) drawDib.reset(new (std::nothrow) Stretcher);
    opened = drawDib != nullptr;
    return opened;
}

void DrawingThread::Close() {
    const std::lock_guard guard(lock);
    DropPictures();
    opened = false;
    releaseDue = true;
    if (!decoding) Release();
}

// Afterwards no picture handed over before can become the current image. One that waits is not even
// decoded.
void DrawingThread::DropPictures() {
    ++generation;
    imageValid = false;
}

// With lock held, by whoever finds that the thread isn't using them any more.
void DrawingThread::Release() {
    if (!std::exchange(releaseDue, false)) return;
    picture.Reset();
    picture.InitHeader();
    if (!opened) drawDib.reset();
}

bool DrawingThread::QueuePicture(std::span<const std::uint8_t> jpeg) {
    const std::lock_guard guard(lock);
    if (busy != 0 || !drawThread.joinable()) return false;
    if (jpeg.size() > pictureBuffer.size()) {
        try {
            pictureBuffer.clear();
            pictureBuffer.resize((jpeg.size() / 1024 + 1) * 1024);
        } catch (const std::bad_alloc&) {
            return false;
        }
    }
    std::copy(jpeg.begin(), jpeg.end(), pictureBuffer.begin());
    // The whole buffer is decoded. Behind a picture that was cut short this end-of-image marker
    // keeps the decoder from reading on into an older, longer one.
    if (pictureBuffer.size() - jpeg.size() >= 2) {
        pictureBuffer[jpeg.size()] = 0xFF;
        pictureBuffer[jpeg.size() + 1] = 0xD9;
    }
    if (!queue.Post({WM_PANEPICTURE})) return false;
    queuedGeneration = generation;
    busy = 1;
    return true;
}

bool DrawingThread::SetView(const PaneView& newView) {
    const std::lock_guard guard(lock);
    if (view == newView) return false;
    view = newView;
    imageValid = false;
    return true;
}

bool DrawingThread::AcceptImage() {
    const std::lock_guard guard(lock);
    notified = false;
    return std::exchange(imageNew, false) && imageValid;
}

void DrawingThread::Run() {
    SetThreadPriority(ThreadPriority::Idle);
    ThreadMessage message;
    while (queue.Wait(message)) {
        if (message.message == WM_PANEPICTURE) DrawPicture();
    }
    events.exited();
}

void DrawingThread::DrawPicture() {
    PaneView target;
    if (BeginPicture() && decode(picture, pictureBuffer.data(), pictureBuffer.size()) == 1 &&
        StretchPicture(target) && PublishImage(target)) {
        events.imageFinished();
    }
    EndPicture();
}

bool DrawingThread::BeginPicture() {
    const std::lock_guard guard(lock);
    decoding = view.shown && opened && queuedGeneration == generation;
    return decoding;
}

// Stretches the picture to the view as it is now, which is put into target.
bool DrawingThread::StretchPicture(PaneView& target) {
    {
        const std::lock_guard guard(lock);
        target = view;
    }
    if (!stretched.Resize(target.width, target.height)) return false;
    return drawDib->Stretch(
        {picture.GetPixels(), picture.Width(), picture.Height(), picture.Stride()}, stretched);
}

// Makes the stretched picture the current image unless the pane has become another meanwhile.
// Returns whether the interface thread must be told: it need not when it hasn't yet accepted the
// image before.
bool DrawingThread::PublishImage(const PaneView& target) {
    const std::lock_guard guard(lock);
    if (!view.shown || target != view || queuedGeneration != generation) return false;
    std::swap(image, stretched);
    imageValid = true;
    imageNew = true;
    return !std::exchange(notified, true);
}

void DrawingThread::EndPicture() {
    const std::lock_guard guard(lock);
    decoding = false;
    Release();
    busy = 0;
}

}  // namespace marvolen

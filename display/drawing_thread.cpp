#include "display/drawing_thread.h"

#include "platform/thread_priority.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace marvolen {

bool DecodeJpegFrame(DibImage& picture, std::span<const std::uint8_t> jpeg,
                     const PaneView& target) {
    return picture.DecodeJpegFor(target.width, target.height, jpeg.data(), jpeg.size()) == 1;
}

DrawingThread::DrawingThread(std::function<void()> imageFunction, DecodeFunction decodeFunction)
    : imageFinished(std::move(imageFunction)), decode(std::move(decodeFunction)) {
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
        const MutexLock guard(lock);
        DropPictures();
        opened = false;
        ending = true;
    }
    wake.notify_one();
    if (drawThread.joinable()) HastenThread(drawThread);
}

bool DrawingThread::Open() {
    const MutexLock guard(lock);
    DropPictures();
    if (!drawThread.joinable() || ending) return false;
    if (!stretcher) stretcher.reset(new (std::nothrow) Stretcher);
    opened = stretcher != nullptr;
    return opened;
}

void DrawingThread::Close() {
    Released released;  // behind the lock
    const MutexLock guard(lock);
    DropPictures();
    opened = false;
    releaseDue = true;
    if (!decoding) released = Release();
}

// Afterwards no picture handed over before can become the current image. One that waits is not even
// decoded.
void DrawingThread::DropPictures() {
    ++generation;
    imageValid = false;
}

// Called by whoever finds that the thread isn't using them any more, who frees them without holding
// the lock: the interface thread must not wait for an idle one that does so.
DrawingThread::Released DrawingThread::Release() {
    Released released;
    if (!std::exchange(releaseDue, false)) return released;
    released.picture = std::move(picture);
    picture.Reset();
    picture.InitHeader();
    if (!opened) released.stretcher = std::move(stretcher);
    return released;
}

bool DrawingThread::QueuePicture(std::span<const std::uint8_t> jpeg) {
    const MutexLock guard(lock);
    if (busy || ending || !drawThread.joinable()) return false;
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
    queuedGeneration = generation;
    busy = waiting = true;
    wake.notify_one();
    return true;
}

bool DrawingThread::SetView(const PaneView& newView) {
    const MutexLock guard(lock);
    if (view == newView) return false;
    view = newView;
    imageValid = false;
    return true;
}

bool DrawingThread::AcceptImage() {
    const MutexLock guard(lock);
    notified = false;
    return std::exchange(imageNew, false) && imageValid;
}

void DrawingThread::Run() {
    SetThreadPriority(ThreadPriority::Idle);
    while (WaitForPicture()) {
        Work work;
        if (BeginPicture(work) && decode(*work.picture, work.jpeg, work.target) &&
            StretchPicture(work) && PublishImage(work.target)) {
            imageFinished();
        }
        EndPicture();
    }
}

// Waits for a picture that nobody has begun with. False at the thread's end.
bool DrawingThread::WaitForPicture() {
    MutexLock guard(lock);
    while (!waiting && !ending) wake.wait(guard);
    waiting = false;
    return !ending;
}

// Lends out what the picture is drawn with; false when nobody wants to see it.
bool DrawingThread::BeginPicture(Work& work) {
    const MutexLock guard(lock);
    decoding = view.shown && opened && queuedGeneration == generation;
    work = {pictureBuffer, &picture, stretcher.get(), view};
    return decoding;
}

// Stretches the picture to the view as it is now, which becomes the target.
bool DrawingThread::StretchPicture(Work& work) {
    {
        const MutexLock guard(lock);
        work.target = view;
    }
    if (!stretched.Resize(work.target.width, work.target.height)) return false;
    const DibImage& decoded = *work.picture;
    return work.stretcher->Stretch(
        {decoded.GetPixels(), decoded.Width(), decoded.Height(), decoded.Stride()}, stretched);
}

// Makes the stretched picture the current image unless the pane has become another meanwhile.
// Returns whether the interface thread must be told: it need not when it hasn't yet accepted the
// image before.
bool DrawingThread::PublishImage(const PaneView& target) {
    const MutexLock guard(lock);
    if (!view.shown || target != view || queuedGeneration != generation) return false;
    std::swap(image, stretched);
    imageValid = true;
    imageNew = true;
    return !std::exchange(notified, true);
}

void DrawingThread::EndPicture() {
    Released released;  // behind the lock
    const MutexLock guard(lock);
    decoding = false;
    released = Release();
    busy = false;
}

}  // namespace marvolen

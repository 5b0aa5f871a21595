#pragma once

// A decoder for panes under test: it counts, keeps what it was given, and can be held in the
// middle of a picture.

#include "display/drawing_thread.h"
#include "tests/support/loopback.h"

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace marvolen::test {

using Bytes = std::vector<std::uint8_t>;

// A JPEG picture of one colour.
inline Bytes PlainJpeg(const QColor& colour, int width = 32, int height = 24) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPEG", 95);
    return Bytes(bytes.begin(), bytes.end());
}

// Whether a pixel has this colour as far as JPEG keeps it.
inline bool Resembles(QRgb pixel, const QColor& colour) {
    return std::abs(qRed(pixel) - colour.red()) <= 4 &&
           std::abs(qGreen(pixel) - colour.green()) <= 4 &&
           std::abs(qBlue(pixel) - colour.blue()) <= 4;
}

// Must outlive the pane or thread that uses it.
class GatedDecoder {
public:
    DecodeFunction Function() {
        return [this](DibImage& picture, const std::uint8_t* bytes, std::size_t count) {
            return Decode(picture, bytes, count);
        };
    }

    // Decodes wait from now on until Release.
    void Hold() { SetHeld(true); }
    void Release() { SetHeld(false); }

    // Waits until that many decodes have begun or ended; false when they don't for kPatience.
    bool WaitForStarts(int count) { return WaitFor(starts, count); }
    bool WaitForEnds(int count) { return WaitFor(ends, count); }

    int Starts() { return Read(starts); }
    int Ends() { return Read(ends); }
    Bytes Received() { return Read(received); }  // by the last decode begun

private:
    int Decode(DibImage& picture, const std::uint8_t* bytes, std::size_t count) {
        {
            std::unique_lock guard(mutex);
            received.assign(bytes, bytes + count);
            ++starts;
            changed.notify_all();
            changed.wait(guard, [this] { return !held; });
        }
        const int result = picture.DecodeJpeg(bytes, count, JpegPath::Plain);  // the more exact
        const std::lock_guard guard(mutex);
        ++ends;
        changed.notify_all();
        return result;
    }

    void SetHeld(bool value) {
        const std::lock_guard guard(mutex);
        held = value;
        changed.notify_all();
    }
    bool WaitFor(const int& counter, int count) {
        std::unique_lock guard(mutex);
        return changed.wait_for(guard, std::chrono::milliseconds(kPatience),
                                [&] { return counter >= count; });
    }
    template <typename Value>
    Value Read(const Value& value) {
        const std::lock_guard guard(mutex);
        return value;
    }

    std::mutex mutex;
    std::condition_variable changed;
    // Guarded by mutex.
    bool held = false;
    int starts = 0;
    int ends = 0;
    Bytes received;
};

// Releases a decoder from another thread while this one runs an operation that waits for it (or
// shortly before).
template <typename Operation>
void RunWhileReleasing(GatedDecoder& decoder, Operation operation) {
    std::thread releaser([&decoder] { decoder.Release(); });
    operation();
    releaser.join();
}

}  // namespace marvolen::test

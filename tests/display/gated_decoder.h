#pragma once

// A decoder for panes under test: it keeps what it was given, and can be held in the middle of a
// picture.

#include "display/drawing_thread.h"
#include "tests/support/event_loop.h"

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <sched.h>
#include <vector>

namespace marvolen::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes ToJpeg(const QImage& image) {
    QBuffer buffer;
    image.save(&buffer, "JPEG", 100);
    return Bytes(buffer.data().begin(), buffer.data().end());
}

// A JPEG picture of one colour.
inline Bytes PlainJpeg(const QColor& colour) {
    QImage image(32, 24, QImage::Format_RGB32);
    image.fill(colour);
    return ToJpeg(image);
}

// Whether a pixel has this colour as far as JPEG keeps it.
inline bool Resembles(QRgb pixel, const QColor& colour) {
    const auto near = [](int a, int b) { return std::abs(a - b) <= 4; };
    return near(qRed(pixel), colour.red()) && near(qGreen(pixel), colour.green()) &&
           near(qBlue(pixel), colour.blue());
}

// Must outlive the pane or thread that uses it.
class GatedDecoder {
public:
    struct Decode {
        Bytes buffer;          // all it was given, from a picture's first byte on
        int formerWidth;       // of the picture it is to replace
        int policy;            // the scheduling policy of its thread when it began
        int policyAtEnd = -1;  // when it ended

        bool IsOf(const Bytes& jpeg) const {
            return jpeg.size() <= buffer.size() &&
                   std::equal(jpeg.begin(), jpeg.end(), buffer.begin());
        }
    };

    DecodeFunction Function() {
        return [this](DibImage& picture, std::span<const std::uint8_t> jpeg) {
            std::unique_lock guard(mutex);
            decodes.push_back({{jpeg.begin(), jpeg.end()}, picture.Width(), sched_getscheduler(0)});
            const std::size_t own = decodes.size() - 1;
            released.wait(guard, [&] { return held.empty() || !decodes[own].IsOf(held); });
            const bool decoded = picture.DecodeJpeg(jpeg.data(), jpeg.size(), JpegPath::Plain) == 1;
            decodes[own].policyAtEnd = sched_getscheduler(0);
            return decoded;
        };
    }

    // Decodes of this picture wait from now on until Release.
    void Hold(const Bytes& jpeg) {
        const std::lock_guard guard(mutex);
        held = jpeg;
        released.notify_all();
    }
    void Release() { Hold({}); }

    // Every decode begun; how many of them were of one picture.
    std::vector<Decode> Decodes() {
        const std::lock_guard guard(mutex);
        return decodes;
    }
    int Begun(const Bytes& jpeg) {
        const auto all = Decodes();
        return static_cast<int>(std::count_if(all.begin(), all.end(),
                                              [&](const auto& each) { return each.IsOf(jpeg); }));
    }

private:
    std::mutex mutex;
    std::condition_variable released;
    Bytes held;                   // guarded by mutex
    std::vector<Decode> decodes;  // guarded by mutex
};

}  // namespace marvolen::test

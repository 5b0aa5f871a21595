#include "tools/camera_server/scenes/painted_pictures.h"

#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/overlay.h"
#include "tools/camera_server/scenes/renderer.h"
#include "tools/camera_server/scenes/scene_list.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <utility>

namespace marvolen {
namespace {

using scenes::Renderer;

// Somebody waits for a view's first picture; the others must not be in anybody's way.
constexpr int kFirstNice = 5;
constexpr int kOtherNice = 19;
constexpr int kFirstQuality = 80;
constexpr int kQualityStep = 6;
constexpr int kLowestQuality = 44;
constexpr int kHighestQuality = 92;

// What a camera of this kind spends on a picture, bytes.
int TargetBytes(PictureSize size) {
    switch (size) {
        case PictureSize::Full:
            return 50000;
        case PictureSize::Sif:
            return 19000;
        case PictureSize::Qsif:
            break;
    }
    return 7000;
}

std::vector<std::uint8_t> Encode(const QImage& image, int quality) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    if (!writer.write(image)) return {};
    return {bytes.begin(), bytes.end()};
}

// A picture of the given size from one twice as wide and high.
scenes::Pixels Halve(const scenes::Pixels& pixels, int width, int height) {
    scenes::Pixels halved;
    halved.reserve(pixels.size() / 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t* const upper =
                &pixels[static_cast<std::size_t>(4 * width * y + 2 * x)];
            const std::uint32_t* const lower = upper + 2 * width;
            const std::uint32_t four[] = {upper[0], upper[1], lower[0], lower[1]};
            halved.push_back(scenes::Average(four, 4));
        }
    }
    return halved;
}

// Paints one view's loop, picture by picture.
class Painter {
public:
    Painter(const View& paintedView, std::size_t loopLength, const std::string& name)
        : view(paintedView),
          length(loopLength),
          extent(ExtentOf(view.size)),
          // The smallest pictures are painted larger and reduced, which keeps their details.
          scale(view.size == PictureSize::Qsif ? 2 : 1),
          renderer(scenes::SceneFor(view.channel, view.camera, static_cast<float>(loopLength) / 30),
                   extent.width * scale, extent.height * scale),
          overlay(view.channel + 1, name, extent.width, extent.height) {}

    PicturePtr Paint(std::size_t position) {
        const float phase = static_cast<float>(position) / static_cast<float>(length);
        scenes::Pixels pixels = renderer.Render(phase);
        renderer.AddNoise(pixels, scenes::Hash(static_cast<std::int32_t>(position), view.channel));
        if (scale == 2) pixels = Halve(pixels, extent.width, extent.height);
        const int clock = renderer.TheScene().clock + static_cast<int>(position / 30);
        overlay.Draw(pixels, clock, static_cast<int>(position % 1000));
        const QImage image(reinterpret_cast<const uchar*>(pixels.data()), extent.width,
                           extent.height, QImage::Format_RGB32);
        if (position == 0) ChooseQuality(image);
        return MakePicture(Encode(image, quality));
    }

private:
    // Cameras hold a size rather than a quality; the first picture decides for its loop.
    void ChooseQuality(const QImage& image) {
        const auto target = static_cast<std::size_t>(TargetBytes(view.size));
        quality = kFirstQuality;
        const bool shrink = Encode(image, quality).size() > target;
        const int step = shrink ? -kQualityStep : kQualityStep;
        while (quality + step >= kLowestQuality && quality + step <= kHighestQuality) {
            const bool larger = Encode(image, quality + step).size() > target;
            if (!shrink && larger) break;
            quality += step;
            if (shrink && !larger) break;
        }
    }

    const View view;
    const std::size_t length;
    const PictureExtent extent;
    const int scale;
    const Renderer renderer;
    const scenes::Overlay overlay;
    int quality = kFirstQuality;
};

}  // namespace

class PaintedPictures::Studio {
public:
    explicit Studio(PaintedOptions studioOptions) : options(std::move(studioOptions)) {
        options.loopLength = std::max<std::size_t>(options.loopLength, 1);
        const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
        const int count = options.threads > 0 ? options.threads : processors;
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([this] { Work(Stage::First); });
            threads.emplace_back([this] { Work(Stage::Others); });
        }
    }

    ~Studio() {
        {
            const std::lock_guard hold(lock);
            stopping = true;
        }
        workWaits.notify_all();
        for (std::thread& thread : threads) thread.join();
    }

    PicturePtr At(const View& view, std::uint64_t position) {
        const std::lock_guard hold(lock);
        const auto [entry, isNew] = loops.try_emplace(view);
        if (isNew) workWaits.notify_all();
        const std::vector<PicturePtr>& ready = entry->second.pictures;
        if (ready.empty()) return nullptr;
        return ready[std::min<std::size_t>(position % options.loopLength, ready.size() - 1)];
    }

    void WaitUntilComplete() {
        std::unique_lock hold(lock);
        pictureDone.wait(hold, [this] {
            return std::all_of(loops.begin(), loops.end(), [this](const auto& entry) {
                return entry.second.pictures.size() == options.loopLength;
            });
        });
    }

private:
    struct Loop {
        std::vector<PicturePtr> pictures;
        std::unique_ptr<Painter> painter;  // used without the lock by the thread that set busy
        bool busy = false;
    };

    // What a thread paints: the first picture of a view, or those that follow.
    enum class Stage { First, Others };

    // The idle loop with the fewest pictures at that stage; none when all are complete or in work.
    std::map<View, Loop>::iterator Neediest(Stage stage) {
        auto found = loops.end();
        for (auto entry = loops.begin(); entry != loops.end(); ++entry) {
            const std::size_t count = entry->second.pictures.size();
            if (entry->second.busy || count == options.loopLength) continue;
            if ((count == 0) != (stage == Stage::First)) continue;
            if (found == loops.end() || count < found->second.pictures.size()) found = entry;
        }
        return found;
    }

    void Work(Stage stage) {
        if (options.lowPriority) {
            // Applies to this thread alone.
            ::setpriority(PRIO_PROCESS, 0, stage == Stage::First ? kFirstNice : kOtherNice);
        }
        std::unique_lock hold(lock);
        for (;;) {
            auto entry = loops.end();
            workWaits.wait(hold, [&] {
                entry = Neediest(stage);
                return stopping || entry != loops.end();
            });
            if (stopping) return;
            Loop& loop = entry->second;
            loop.busy = true;
            const std::size_t position = loop.pictures.size();
            hold.unlock();
            if (!loop.painter) {
                loop.painter = std::make_unique<Painter>(entry->first, options.loopLength,
                                                         NameOf(entry->first));
            }
            PicturePtr picture = loop.painter->Paint(position);
            if (position + 1 == options.loopLength) loop.painter.reset();
            hold.lock();
            loop.pictures.push_back(std::move(picture));
            loop.busy = false;
            pictureDone.notify_all();
            workWaits.notify_all();
        }
    }

    std::string NameOf(const View& view) const {
        const auto channel = static_cast<std::size_t>(view.channel);
        std::string name = channel < options.names.size() ? options.names[channel] : "";
        if (view.camera > 0) name.append(" ").append(std::to_string(view.camera + 1));
        return name;
    }

    PaintedOptions options;  // constant after construction

    std::mutex lock;
    std::condition_variable workWaits;
    std::condition_variable pictureDone;
    std::map<View, Loop> loops;  // guarded by lock, but see Loop
    bool stopping = false;       // guarded by lock

    std::vector<std::thread> threads;
};

PaintedPictures::PaintedPictures(PaintedOptions options)
    : studio(std::make_unique<Studio>(std::move(options))) {}

PaintedPictures::~PaintedPictures() = default;

PicturePtr PaintedPictures::At(const View& view, std::uint64_t position) {
    return studio->At(view, position);
}

void PaintedPictures::WaitUntilComplete() {
    studio->WaitUntilComplete();
}

}  // namespace marvolen

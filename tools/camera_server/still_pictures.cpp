#include "tools/camera_server/still_pictures.h"

#include "tools/camera_server/still_loop.h"

#include <algorithm>
#include <sys/resource.h>
#include <utility>

namespace marvolen {
namespace {

// Somebody may wait for a first picture, but nobody for the processor.
constexpr int kNice = 10;

}  // namespace

StillPictures::StillPictures(std::size_t loopLength, std::vector<std::string> channelNames)
    : length(std::max<std::size_t>(loopLength, 1)), names(std::move(channelNames)) {
    worker = std::thread([this] { Work(); });
}

StillPictures::~StillPictures() {
    {
        const MutexLock hold(lock);
        stopping = true;
    }
    workWaits.notify_all();
    worker.join();
}

PicturePtr StillPictures::At(const View& view, std::uint64_t position) {
    const MutexLock hold(lock);
    const auto [entry, isNew] = loops.try_emplace(view);
    if (isNew) workWaits.notify_all();
    const std::vector<PicturePtr>& ready = entry->second.pictures;
    if (ready.empty()) return nullptr;
    return ready[std::min<std::size_t>(position % length, ready.size() - 1)];
}

// The loop with the fewest pictures; none when all are complete.
std::map<View, StillPictures::Loop>::iterator StillPictures::Neediest() {
    const auto fewest = std::min_element(loops.begin(), loops.end(), [](auto& a, auto& b) {
        return a.second.pictures.size() < b.second.pictures.size();
    });
    const bool complete = fewest == loops.end() || fewest->second.pictures.size() == length;
    return complete ? loops.end() : fewest;
}

void StillPictures::Work() {
    ::setpriority(PRIO_PROCESS, 0, kNice);  // of this thread alone
    MutexLock hold(lock);
    while (!stopping) {
        const auto entry = Neediest();
        if (entry == loops.end()) {
            workWaits.wait(hold);
            continue;
        }
        Loop& loop = entry->second;
        const std::size_t position = loop.pictures.size();
        hold.unlock();
        if (!loop.painter) {
            loop.painter = std::make_unique<StillLoop>(entry->first, length, NameOf(entry->first));
        }
        PicturePtr picture = loop.painter->Paint(position);
        if (position + 1 == length) loop.painter.reset();
        hold.lock();
        loop.pictures.push_back(std::move(picture));
    }
}

std::string StillPictures::NameOf(const View& view) const {
    const auto channel = static_cast<std::size_t>(view.channel);
    std::string name = channel < names.size() ? names[channel] : "";
    if (view.camera > 0) name.append(" ").append(std::to_string(view.camera + 1));
    return name;
}

}  // namespace marvolen

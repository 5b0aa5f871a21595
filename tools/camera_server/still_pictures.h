#pragma once

// Sixteen places seen by swaying cameras, for everybody to look at. A view's loop is painted and
// encoded once, picture by picture as somebody asks for it, and kept.

#include "platform/thread_annotations.h"
#include "tools/camera_server/picture_source.h"

#include <condition_variable>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace marvolen {

class StillLoop;

class StillPictures : public PictureSource {
public:
    // Loops of loopLength pictures (at least 1), a thirtieth of a second each. names are the
    // channels', shown in their pictures. Needs a QGuiApplication while it lives.
    explicit StillPictures(std::size_t loopLength, std::vector<std::string> names = {});
    ~StillPictures() override;  // waits for the picture being painted, for no other

    // Null until the view's first picture is ready, some hundredths of a second after it was first
    // asked for; first pictures go before all others. While a loop is still growing its newest
    // picture stands in for those to come. Any thread.
    PicturePtr At(const View& view, std::uint64_t position) override;

private:
    struct Loop {
        std::vector<PicturePtr> pictures;
        std::unique_ptr<StillLoop> painter;  // used by the worker only, without the lock
    };

    void Work();
    std::map<View, Loop>::iterator Neediest() REQUIRES(lock);
    std::string NameOf(const View& view) const;

    const std::size_t length;
    const std::vector<std::string> names;

    Mutex lock;
    std::condition_variable_any workWaits;
    std::map<View, Loop> loops GUARDED_BY(lock);
    bool stopping GUARDED_BY(lock) = false;

    std::thread worker;
};

}  // namespace marvolen

#include "display/status_marks.h"

#include "res/resources.h"

#include <QtMath>

#include <algorithm>

namespace marvolen {

std::shared_ptr<StatusMarks> StatusMarks::Shared() {
    static std::weak_ptr<StatusMarks> shared;
    std::shared_ptr<StatusMarks> marks = shared.lock();
    if (!marks) shared = marks = std::make_shared<StatusMarks>();
    return marks;
}

QPixmap StatusMarks::Mark(int mark, qreal devicePixelRatio) {
    auto found = std::find_if(drawn.begin(), drawn.end(), [&](const Drawn& entry) {
        return qFuzzyCompare(entry.devicePixelRatio, devicePixelRatio);
    });
    if (found == drawn.end()) {
        const auto draw = [&](int which) {
            return LoadStatusMark(which, kStatusMarkSize, devicePixelRatio);
        };
        found = drawn.insert(found, {devicePixelRatio, {draw(kRecording), draw(kConnected)}});
    }
    return found->marks[static_cast<std::size_t>(mark)];
}

}  // namespace marvolen

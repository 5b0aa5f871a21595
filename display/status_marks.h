#pragma once

// The status marks: one set for all panes and pop-ups. Interface thread only.

#include <QPixmap>

#include <array>
#include <memory>
#include <vector>

namespace marvolen {

class StatusMarks {
public:
    static constexpr int kRecording = 0;
    static constexpr int kConnected = 1;

    // The set that all users share. It is made by the first and goes with the last of them, so
    // that no pixmap outlives the application.
    static std::shared_ptr<StatusMarks> Shared();

    // A mark, 32 x 21 device-independent pixels with a transparent ground, drawn for a screen of
    // devicePixelRatio. Made on the first call for a ratio, the same pixmap after that.
    QPixmap Mark(int mark, qreal devicePixelRatio);

private:
    struct Drawn {
        qreal devicePixelRatio;
        std::array<QPixmap, 2> marks;
    };
    std::vector<Drawn> drawn;
};

}  // namespace marvolen

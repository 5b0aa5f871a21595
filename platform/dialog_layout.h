#pragma once

// What the layouts of dialogs have in common. Interface thread only.

#include <QLayout>
#include <QScreen>
#include <QWidget>

namespace marvolen {

// Between controls, device-independent pixels.
inline constexpr int kDialogSpacing = 4;

// What a window's frame takes of the screen, about.
inline constexpr QSize kFrameAllowance(16, 48);

// A layout of a dialog, a page or a group box, with the margins and the spacing of all of them. It
// belongs to owner.
template <typename Layout>
Layout* MakeDialogLayout(QWidget* owner) {
    auto* layout = new Layout(owner);
    layout->setContentsMargins(2 * kDialogSpacing, kDialogSpacing, 2 * kDialogSpacing,
                               2 * kDialogSpacing);
    layout->setSpacing(kDialogSpacing);
    return layout;
}

// Makes a window that isn't seen yet as large as wanted, where its screen has the room.
inline void FitScreen(QWidget& window, const QSize& wanted) {
    window.resize(wanted.boundedTo(window.screen()->availableSize() - kFrameAllowance));
}

}  // namespace marvolen

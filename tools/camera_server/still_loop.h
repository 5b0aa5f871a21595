#pragma once

// One view's loop of pictures: a camera that sways over a still picture, so that everything in it
// moves and the last picture leads to the first.

#include "tools/camera_server/picture_source.h"

#include <QImage>
#include <QString>

#include <cstddef>
#include <string>

namespace marvolen {

class StillLoop {
public:
    // A loop of length pictures (at least 1). Camera 0 of channel k sees the k-th place, the other
    // cameras see places of other channels. name, UTF-8, is shown in the pictures. Needs a
    // QGuiApplication (the offscreen platform will do), for the text.
    StillLoop(const View& view, std::size_t length, const std::string& name);

    // The encoded picture at a position below length, with grain, channel number, name and
    // position. The same arguments give the same bytes. One thread at a time.
    PicturePtr Paint(std::size_t position);

private:
    QRect WindowAt(std::size_t position) const;
    void AddGrain(QImage& picture, std::size_t position) const;
    void AddText(QImage& picture, std::size_t position) const;

    const View view;
    const std::size_t length;
    const QString name;
    const QImage still;
    int quality = 0;  // chosen with the first picture
};

}  // namespace marvolen

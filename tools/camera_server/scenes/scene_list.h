#pragma once

// The places that painted cameras look at: sixteen of them, each in any light.

#include "tools/camera_server/scenes/light.h"
#include "tools/camera_server/scenes/scene.h"

#include <cstdint>

namespace marvolen::scenes {

// What a place is painted for. Different seeds place and colour things differently.
struct Brief {
    std::uint32_t seed = 1;
    Daylight light = Daylight::Noon;
    float seconds = 2;  // length of the loop
};

Scene Gate(const Brief& brief);
Scene CarPark(const Brief& brief);
Scene LoadingDock(const Brief& brief);
Scene Reception(const Brief& brief);
Scene MainStreet(const Brief& brief);
Scene Corridor(const Brief& brief);
Scene Harbour(const Brief& brief);
Scene Warehouse(const Brief& brief);
Scene Garden(const Brief& brief);
Scene Skyline(const Brief& brief);
Scene Highway(const Brief& brief);
Scene BackYard(const Brief& brief);
Scene Lake(const Brief& brief);
Scene ServerRoom(const Brief& brief);
Scene Station(const Brief& brief);
Scene Lighthouse(const Brief& brief);

// The scene of a channel's camera, both zero-based. Camera 0 of channel k is the k-th place above
// in the light that suits it; cameras 1 to 3 look at other places in other light.
Scene SceneFor(int channel, int camera, float seconds);

}  // namespace marvolen::scenes

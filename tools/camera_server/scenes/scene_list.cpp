#include "tools/camera_server/scenes/scene_list.h"

#include "tools/camera_server/scenes/noise.h"

#include <array>
#include <cstddef>

namespace marvolen::scenes {
namespace {

struct Place {
    Scene (*make)(const Brief&);
    std::array<Daylight, 4> lights;  // the best first; rooms have their own
};

using enum Daylight;

constexpr std::array<Place, 16> kPlaces{{
    {Gate, {Morning, Overcast, Noon, Evening}},
    {CarPark, {Noon, Morning, Overcast, Evening}},
    {LoadingDock, {Overcast, Morning, Dusk, Noon}},
    {Reception, {Noon, Noon, Noon, Noon}},
    {MainStreet, {Dusk, Noon, Evening, Overcast}},
    {Corridor, {Noon, Noon, Noon, Noon}},
    {Harbour, {Evening, Morning, Noon, Dusk}},
    {Warehouse, {Noon, Noon, Noon, Noon}},
    {Garden, {Noon, Evening, Morning, Overcast}},
    {Skyline, {Night, Dusk, Evening, Dusk}},
    {Highway, {Morning, Evening, Overcast, Noon}},
    {BackYard, {Night, Night, Night, Night}},
    {Lake, {Morning, Noon, Evening, Overcast}},
    {ServerRoom, {Noon, Noon, Noon, Noon}},
    {Station, {Evening, Dusk, Overcast, Noon}},
    {Lighthouse, {Noon, Evening, Overcast, Dusk}},
}};

}  // namespace

Scene SceneFor(int channel, int camera, float seconds) {
    const auto variant = static_cast<std::size_t>(camera) % 4;
    const std::size_t place = (static_cast<std::size_t>(channel) + variant * 5) % kPlaces.size();
    const Brief brief{.seed = static_cast<std::uint32_t>(channel * 4 + camera + 1),
                      .light = kPlaces[place].lights[variant],
                      .seconds = seconds};
    Scene scene = kPlaces[place].make(brief);
    scene.seconds = seconds;
    scene.clock += static_cast<int>(Hash(channel, camera) % 1500);
    return scene;
}

}  // namespace marvolen::scenes

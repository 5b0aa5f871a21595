#pragma once

// The choices a channel offers: camera, picture size and update rate, each a row with the label
// that users see and the piece of the request's query that asks the camera server for it.

#include <array>
#include <cstdint>
#include <string_view>

namespace marvolen {

struct RequestOption {
    std::string_view label;
    std::string_view query;  // appended to "getimage?" in the order camera, size, rate
};

struct RateOption {
    std::string_view label;   // padded with blanks to seven characters
    std::string_view query;   // "&delay=" counts hundredths of a second; empty for full speed
    std::uint32_t paneParam;  // the live pane's minInterval, milliseconds
};

inline constexpr std::array<RequestOption, 4> g_cameraOptions{{
    {"Camera 1", "camera=1"},
    {"Camera 2", "camera=2"},
    {"Camera 3", "camera=3"},
    {"Camera 4", "camera=4"},
}};

inline constexpr std::array<RequestOption, 3> g_sizeOptions{{
    {"Large", "&fmt=full"},
    {"Middle", "&fmt=sif"},
    {"Small", "&fmt=qsif"},
}};

inline constexpr std::array<RateOption, 10> g_rateOptions{{
    {"30  fps", "", 0},
    {"15  fps", "&delay=3", 0},
    {"10  fps", "&delay=7", 0},
    {"7.5 fps", "&delay=10", 0},
    {"5   fps", "&delay=17", 0},
    {"3   fps", "&delay=30", 0},
    {"1   fps", "&delay=97", 0},
    {"0.5 fps", "&delay=197", 0},
    {"0.2 fps", "&delay=497", 0},
    {"0.1 fps", "&delay=997", 0},
}};

// The row of a stored index. An index outside its table, as a damaged settings file may hold,
// counts as the factory row; the stored value is left alone.
const RequestOption& CameraOption(std::int32_t cameraIndex);
const RequestOption& SizeOption(std::int32_t sizeIndex);
const RateOption& RateOptionRow(std::int32_t rateIndex);

}  // namespace marvolen

#include "config/channel_options.h"

#include <cstddef>

namespace marvolen {
namespace {

template <typename Table>
const typename Table::value_type& RowOr(const Table& table, std::int32_t index,
                                        std::size_t factory) {
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < table.size();
    return table[inside ? static_cast<std::size_t>(index) : factory];
}

}  // namespace

const RequestOption& CameraOption(std::int32_t cameraIndex) {
    return RowOr(g_cameraOptions, cameraIndex, 0);
}

const RequestOption& SizeOption(std::int32_t sizeIndex) {
    return RowOr(g_sizeOptions, sizeIndex, 1);
}

const RateOption& RateOptionRow(std::int32_t rateIndex) {
    return RowOr(g_rateOptions, rateIndex, 0);
}

}  // namespace marvolen

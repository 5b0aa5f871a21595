#include "config/channel_info.h"

#include "config/channel_options.h"
#include "platform/text_field.h"

#include <gtest/gtest.h>
#include <limits>

namespace marvolen {
namespace {

TEST(ChannelTable, FactoryValuesOfEveryChannel) {
    const ChannelTable table = FactoryChannelTable();
    for (int k = 0; k < kChannelCount; ++k) {
        const ChannelInfo& info = table[static_cast<std::size_t>(k)];
        EXPECT_EQ(info.channelIndex, k);
        EXPECT_EQ(FieldText(info.netName), "");
        EXPECT_EQ(FieldText(info.host), "");
        EXPECT_EQ(FieldText(info.port), "80");
        EXPECT_EQ(FieldText(info.userName), "root");
        EXPECT_EQ(FieldText(info.password), "tuvk");
        EXPECT_EQ(info.maxSizeMB, 1024);
        EXPECT_EQ(CameraOption(info.cameraIndex).label, "Camera 1");
        EXPECT_EQ(SizeOption(info.sizeIndex).label, "Middle");
        EXPECT_EQ(RateOptionRow(info.rateIndex).label, "30  fps");
    }
    EXPECT_EQ(FieldText(table[9].recordPath), "c:\\chl10.dbt");
    EXPECT_EQ(FieldText(table[15].recordPath), "c:\\chl16.dbt");
}

TEST(ChannelOptions, IndexOutsideItsTableCountsAsTheFactoryRow) {
    for (const std::int32_t index : {-1, 10, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(CameraOption(index).query, "camera=1") << index;
        EXPECT_EQ(SizeOption(index).query, "&fmt=sif") << index;
        EXPECT_EQ(RateOptionRow(index).query, "") << index;
    }
    EXPECT_EQ(CameraOption(4).query, "camera=1");
    EXPECT_EQ(SizeOption(3).query, "&fmt=sif");
}

}  // namespace
}  // namespace marvolen

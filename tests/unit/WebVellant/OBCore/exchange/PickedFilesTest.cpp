#include "OBCore/exchange/PickedFiles.h"

#include <gtest/gtest.h>

namespace {

using namespace obcore;

class ResultMapTest : public testing::Test {};

TEST_F(ResultMapTest, IsEmptyAtFirstAndOnePerProcess) {
    EXPECT_TRUE(Results().empty());
    Results()[7].paths = {L"C:\\a"};
    EXPECT_EQ(Results().at(7).paths.size(), 1u);
    EXPECT_EQ(&Results(), &Results());
    Results().clear();
}

TEST_F(ResultMapTest, OrdersDialogsAsUnsignedNumbers) {
    const auto high = reinterpret_cast<const IFileDialog*>(0xFFFFFFFF00000000u);
    const auto low = reinterpret_cast<const IFileDialog*>(0x10u);
    ResultMap map;
    map[ResultKey(high)].flag = 1;
    map[ResultKey(low)].flag = 2;
    EXPECT_EQ(map.begin()->first, 0x10u);
    EXPECT_EQ(map.rbegin()->first, 0xFFFFFFFF00000000u);
}

} // namespace

// How wide the columns of a list view are.
#include "ObLibX/src/controls/ListColumns.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;
using Widths = std::vector<std::int32_t>;

Widths WidthsOf(std::initializer_list<std::int32_t> percents, std::int32_t client) {
    std::vector<ColumnDescription> columns;
    for (const std::int32_t percent : percents) columns.push_back({0, percent, {}});
    return ColumnWidths(columns, client);
}

TEST(ListColumnsTest, GiveTheLastColumnWhatIsLeftOver) {
    EXPECT_EQ((Widths{30, 71}), WidthsOf({30, 70}, 101));
    EXPECT_EQ((Widths{33, 33, 34}), WidthsOf({33, 33, 33}, 100));
    EXPECT_EQ((Widths{200}), WidthsOf({10}, 200));
    EXPECT_EQ(Widths(), WidthsOf({}, 200));
}

TEST(ListColumnsTest, AreNeverNegative) {
    EXPECT_EQ((Widths{90, 60, 0}), WidthsOf({90, 60, 10}, 100));
    EXPECT_EQ((Widths{0, 100}), WidthsOf({-50, 10}, 100));
    EXPECT_EQ((Widths{0, 0}), WidthsOf({50, 50}, 0));
    EXPECT_EQ((Widths{0x7FFFFFFF, 0}), WidthsOf({0x7FFFFFFF, 1}, 100000));
}

} // namespace

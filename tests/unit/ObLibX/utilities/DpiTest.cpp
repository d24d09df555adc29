#include <gtest/gtest.h>

#include "ObLibX/src/utilities/ObUtil.h"

namespace {

TEST(HighResolution, ScalesByTheDesktopsOwn) {
    EXPECT_EQ(192, ObLibX::GetDpi());
    EXPECT_EQ(200, ObLibX::Scale(100));
    EXPECT_EQ(-14, ObLibX::Scale(-7));
    EXPECT_EQ(0, ObLibX::Scale(0));
}

} // namespace

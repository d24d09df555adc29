#include "services/transforms/raster/Numbers.h"

#include <gtest/gtest.h>

namespace {

using namespace transforms;

constexpr std::uint8_t kBytes[] = {0x81, 0x02, 0x03, 0xF4, 0x05};

TEST(StoredNumbers, AreReadInBothOrders) {
    EXPECT_EQ(BigEndian32(kBytes), 0x810203F4u);
    EXPECT_EQ(LittleEndian32(kBytes), 0xF4030281u);
}

TEST(StoredNumbers, HaveAsManyBytesAsAreGiven) {
    const std::span<const std::uint8_t> bytes(kBytes);
    EXPECT_EQ(StoredNumber(bytes.first(2), true), 0x0281u);
    EXPECT_EQ(StoredNumber(bytes.first(2), false), 0x8102u);
    EXPECT_EQ(StoredNumber(bytes.first(1), false), 0x81u);
    EXPECT_EQ(StoredNumber({}, true), 0u);
}

} // namespace

#include "OBCore/cloud/CloudButtonHook.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using obcore::CloudButtonHook;

TEST(CloudButtonRecord, HasItsFieldsInTheirOrder) {
    const CloudButtonHook record;
    const auto* const start = reinterpret_cast<const std::uint8_t*>(&record);
    const auto offset = [&](const auto& field) {
        return reinterpret_cast<const std::uint8_t*>(&field) - start;
    };
    EXPECT_EQ(offset(record.hook), 0);
    EXPECT_EQ(offset(record.providerManager), 8);
    EXPECT_EQ(offset(record.button), 16);
    EXPECT_EQ(offset(record.dialog), 24);
    EXPECT_EQ(offset(record.ok_button_), 32);
    EXPECT_EQ(offset(record.combobox_), 40);
    EXPECT_EQ(offset(record.minimumWidth), 48);
    EXPECT_EQ(offset(record.linkText), 56);
}

TEST(CloudButtonRecord, BeginsEmpty) {
    const CloudButtonHook record;
    EXPECT_FALSE(record.hook);
    EXPECT_EQ(record.providerManager, nullptr);
    EXPECT_EQ(record.button, nullptr);
    EXPECT_EQ(record.dialog, nullptr);
    EXPECT_EQ(record.ok_button_, nullptr);
    EXPECT_EQ(record.combobox_, nullptr);
    EXPECT_EQ(record.minimumWidth, 0);
    EXPECT_EQ(record.linkText, L"");
}

} // namespace

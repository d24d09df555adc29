#include "services/providers/settings/TransformSettings.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/ProductRegistry.h"

using obcontract::TransformId;
using providers::PersonalDataSettings;
using providers::TransformSettings;

namespace {

const std::wstring kKey = obcontract::kProviderManagerKey;
const std::wstring kOwnKey = kKey + L"\\Transforms\\51";

class TransformSettingsTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }

    TransformSettings settings_{HKEY_CURRENT_USER, kKey};
};

TEST_F(TransformSettingsTest, AreTheDefaultsUntilTheyAreStored) {
    EXPECT_FALSE(settings_.Has(TransformId::RemoveInfo));
    EXPECT_EQ(settings_.PersonalData(), (PersonalDataSettings{true, true}));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kKey));
}

TEST_F(TransformSettingsTest, AreReadBackAsStored) {
    for (const PersonalDataSettings stored :
         {PersonalDataSettings{true, false}, {false, true}, {false, false}, {true, true}}) {
        ASSERT_TRUE(settings_.Save(stored));
        EXPECT_EQ(settings_.PersonalData(), stored);
        EXPECT_EQ(TransformSettings(HKEY_CURRENT_USER, kKey).PersonalData(), stored);
    }
    EXPECT_TRUE(settings_.Has(TransformId::RemoveInfo));
    EXPECT_FALSE(settings_.Has(TransformId::Watermark));
}

TEST_F(TransformSettingsTest, AreTextsBelowTheManagersKey) {
    ASSERT_TRUE(settings_.Save({false, true}));
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt"), L"0");
    EXPECT_EQ(obtest::ReadValue(HKEY_CURRENT_USER, kOwnKey, L"AskAboutOtherFiles"), L"1");
}

TEST_F(TransformSettingsTest, AreTheDefaultsForValuesOfOthers) {
    const DWORD number = 0;
    obtest::SetRawValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt", REG_DWORD, &number, 4);
    EXPECT_FALSE(settings_.Has(TransformId::RemoveInfo));
    for (const wchar_t* text : {L"", L"2", L"yes", L"00"}) {
        obtest::SetValue(HKEY_CURRENT_USER, kOwnKey, L"ShowReceipt", text);
        obtest::SetValue(HKEY_CURRENT_USER, kOwnKey, L"AskAboutOtherFiles", text);
        EXPECT_FALSE(settings_.Has(TransformId::RemoveInfo));
        EXPECT_EQ(settings_.PersonalData(), (PersonalDataSettings{true, true}));
    }
}

TEST_F(TransformSettingsTest, ReportThatTheyCantBeStored) {
    // The name of a key has at most 255 characters.
    EXPECT_FALSE(TransformSettings(HKEY_CURRENT_USER, std::wstring(300, L'k')).Save({}));
}

} // namespace

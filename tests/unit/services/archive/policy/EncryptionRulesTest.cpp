#include "services/archive/policy/EncryptionRules.h"

#include <bcrypt.h>
#include <gtest/gtest.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"

namespace {

using namespace obarchive;

BOOLEAN systemAsks = FALSE;

NTSTATUS WINAPI FakeFipsMode(BOOLEAN* enabled) {
    *enabled = systemAsks;
    return 0;
}

class EncryptionRulesTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }
    void TearDown() override { obtest::ClearProductRegistry(); }
};

TEST_F(EncryptionRulesTest, WithoutAPolicyBothMethodsAreAllowedAndTheStrongerIsTheDefault) {
    EXPECT_EQ(AllowedMethods(), 12);
    EXPECT_EQ(DefaultMethod(), 8);
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::NotAsked);
    EXPECT_FALSE(WarnIfEncryptionIsOff(nullptr));
}

TEST_F(EncryptionRulesTest, AMethodIsAllowedWhenTheMasksOfBothViewsHaveIt) {
    const struct {
        const wchar_t* in64;
        const wchar_t* in32;
        std::uint16_t allowed;
        std::uint16_t standard;
    } rows[] = {
        {L"4", L"", 4, 4},   {L"8", L"", 8, 8},     {L"12", L"", 12, 8}, {L"", L"4", 4, 4},
        {L"12", L"4", 4, 4}, {L"4", L"8", 0, 0},    {L"0", L"", 0, 0},   {L"255", L"", 12, 8},
        {L"3", L"", 0, 0},   {L"none", L"", 12, 8}, {L"-4", L"", 12, 8}, {L" 4", L"", 12, 8},
        {L"", L"", 12, 8},   {L"8", L"8", 8, 8},    {L"4x", L"8", 8, 8},
    };
    for (const auto& row : rows) {
        obtest::SetMachinePolicy(L"AllowedEncryptionMethods", row.in64, 64);
        obtest::SetMachinePolicy(L"AllowedEncryptionMethods", row.in32, 32);
        EXPECT_EQ(AllowedMethods(), row.allowed) << std::string(row.in64, row.in64 + 1);
        EXPECT_EQ(DefaultMethod(), row.standard);
    }
}

TEST_F(EncryptionRulesTest, ARegDwordCountsAsItsDecimalText) {
    obtest::SetMachinePolicyNumber(L"AllowedEncryptionMethods", 4);
    EXPECT_EQ(AllowedMethods(), 4);
    obtest::SetMachinePolicyNumber(L"AllowedEncryptionMethods", 12);
    obtest::SetMachinePolicyNumber(L"DefaultEncryptionMethod", 4, 32);
    EXPECT_EQ(DefaultMethod(), 4);
    obtest::SetMachinePolicyNumber(L"FipsMode", 1);
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::AskedByPolicy);
    obtest::SetMachinePolicyNumber(L"NoEncryption", 1, 32);
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(WarnIfEncryptionIsOff(nullptr));
}

TEST_F(EncryptionRulesTest, TheDefaultIsTheAdministratorsChoiceIfThatIsAllowed) {
    obtest::SetMachinePolicy(L"DefaultEncryptionMethod", L"4", 32);
    EXPECT_EQ(DefaultMethod(), 4);
    obtest::SetMachinePolicy(L"DefaultEncryptionMethod", L"8", 64);
    EXPECT_EQ(DefaultMethod(), 8);
    obtest::SetMachinePolicy(L"AllowedEncryptionMethods", L"4");
    EXPECT_EQ(DefaultMethod(), 4);
    obtest::SetMachinePolicy(L"DefaultEncryptionMethod", L"12", 64);
    EXPECT_EQ(DefaultMethod(), 4);
}

// The mask isn't emptied: callers ask whether encryption is off only where it isn't empty.
TEST_F(EncryptionRulesTest, EitherViewSwitchesEncryptionOffAndTheMaskStays) {
    const obtest::MessageBoxWatcher boxes;
    for (const int view : {32, 64}) {
        obtest::ClearProductRegistry();
        obtest::SetMachinePolicy(L"NoEncryption", L"1", view);
        EXPECT_EQ(AllowedMethods(), 12);
        EXPECT_EQ(DefaultMethod(), 8);
        EXPECT_TRUE(WarnIfEncryptionIsOff(nullptr));
        obtest::SetMachinePolicy(L"NoEncryption", L"0", view);
        EXPECT_FALSE(WarnIfEncryptionIsOff(nullptr));
        obtest::SetMachinePolicy(L"AllowedEncryptionMethods", L"0", view);
        EXPECT_TRUE(WarnIfEncryptionIsOff(nullptr));
    }
    EXPECT_EQ(boxes.Seen().size(), 4U);
}

TEST_F(EncryptionRulesTest, TheMessageThatEncryptionIsOffIsTheProducts) {
    obtest::SetMachinePolicy(L"NoEncryption", L"1");
    const ObLib::UniqueWindow owner(CreateWindowW(L"Static", L"owner", WS_OVERLAPPEDWINDOW, 0, 0,
                                                  200, 200, nullptr, nullptr, nullptr, nullptr));
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(WarnIfEncryptionIsOff(owner.Get()));
    EXPECT_TRUE(WarnIfEncryptionIsOff(reinterpret_cast<HWND>(0xDEAD)));
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
    EXPECT_EQ(seen[0].text,
              L"The Ombrix encryption feature has been disabled by your administrator.");
    EXPECT_TRUE(seen[0].hasIcon);
    EXPECT_EQ(seen[0].owner, owner.Get());
    EXPECT_EQ(seen[1].owner, nullptr);
}

TEST_F(EncryptionRulesTest, TheFipsSettingDistinguishesPolicyAndSystem) {
    // The system reads its own switch only when it starts.
    const obtest::ImportPatch<decltype(&BCryptGetFipsAlgorithmMode)> mode(
        "bcrypt.dll", "BCryptGetFipsAlgorithmMode", &FakeFipsMode);
    systemAsks = TRUE;
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::AskedBySystem);
    obtest::SetMachinePolicy(L"FipsMode", L"1", 32);
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::AskedByPolicy);
    systemAsks = FALSE;
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::AskedByPolicy);
    obtest::SetMachinePolicy(L"FipsMode", L"0", 32);
    EXPECT_EQ(ReadFipsSetting(), FipsSetting::NotAsked);
}

} // namespace

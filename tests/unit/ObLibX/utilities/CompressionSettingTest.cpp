#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/ProductRegistry.h"

namespace {

using ObLibX::ReadDefaultCompressionMethod;

constexpr wchar_t kKey[] = L"SOFTWARE\\Ombrix Computing\\Ombrix\\Ombrix";
constexpr wchar_t kName[] = L"DefaultCompressionMethod";

class CompressionSetting : public testing::Test {
protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }

    static void Clear() {
        for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            RegDeleteTreeW(root, L"SOFTWARE\\Ombrix Computing");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Wow6432Node\\Ombrix Computing");
    }
    static void StoreUser(const wchar_t* text) {
        obtest::SetValue(HKEY_CURRENT_USER, kKey, kName, text);
    }
    static void StoreMachine(const wchar_t* text, int view = 64) {
        obtest::SetValue(HKEY_LOCAL_MACHINE, kKey, kName, text, view);
    }
};

TEST_F(CompressionSetting, IsTheBestWhereNothingIsSet) {
    EXPECT_EQ(9, ReadDefaultCompressionMethod());
}

TEST_F(CompressionSetting, IsNoneOnlyForATextThatIsTheNumberNought) {
    struct Row {
        const wchar_t* text;
        int method;
    };
    constexpr Row rows[] = {
        {L"0", 0}, {L"00", 0}, {L"+0", 0}, {L"-0", 0}, {L"1", 9},  {L"2", 9},          {L"-1", 9},
        {L"9", 9}, {L"", 9},   {L"x", 9},  {L"0x", 9}, {L" 0", 9}, {L"0000000000", 9},
    };
    for (const Row& row : rows) {
        StoreUser(row.text);
        EXPECT_EQ(row.method, ReadDefaultCompressionMethod()) << row.text;
    }
}

TEST_F(CompressionSetting, OfTheUserComesFirst) {
    StoreMachine(L"0");
    EXPECT_EQ(0, ReadDefaultCompressionMethod());
    StoreUser(L"1");
    EXPECT_EQ(9, ReadDefaultCompressionMethod());
    StoreUser(L"0");
    StoreMachine(L"1");
    EXPECT_EQ(0, ReadDefaultCompressionMethod());
}

TEST_F(CompressionSetting, OfTheMachineIsReadWhereTheUsersKeyHasNoSuchValue) {
    obtest::MakeKey(HKEY_CURRENT_USER, kKey);
    StoreMachine(L"0");
    EXPECT_EQ(0, ReadDefaultCompressionMethod());
}

TEST_F(CompressionSetting, IsATextAndNoOtherType) {
    const DWORD number = 0;
    obtest::SetRawValue(HKEY_CURRENT_USER, kKey, kName, REG_DWORD, &number, sizeof number);
    EXPECT_EQ(9, ReadDefaultCompressionMethod());
    obtest::SetRawValue(HKEY_CURRENT_USER, kKey, kName, REG_EXPAND_SZ, L"0", 4);
    EXPECT_EQ(9, ReadDefaultCompressionMethod());
    StoreMachine(L"0");
    EXPECT_EQ(0, ReadDefaultCompressionMethod()) << "what isn't readable there is read here";
}

TEST_F(CompressionSetting, NeedsNoNulInTheRegistry) {
    obtest::SetRawValue(HKEY_CURRENT_USER, kKey, kName, REG_SZ, L"0x", 2);
    EXPECT_EQ(0, ReadDefaultCompressionMethod());
}

TEST_F(CompressionSetting, IsThatOfTheOwnViewOfTheRegistry) {
    StoreMachine(L"0", 32);
    EXPECT_EQ(9, ReadDefaultCompressionMethod());
}

} // namespace

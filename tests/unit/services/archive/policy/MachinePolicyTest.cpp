#include "services/archive/policy/MachinePolicy.h"

#include <gtest/gtest.h>

#include "tests/support/ProductRegistry.h"

namespace {

using obtest::SetMachinePolicy;

class MachinePolicyTest : public testing::Test {
protected:
    MachinePolicyTest() { obtest::ClearProductRegistry(); }
    ~MachinePolicyTest() override { obtest::ClearProductRegistry(); }
};

TEST_F(MachinePolicyTest, The64BitViewComesFirst) {
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"");
    SetMachinePolicy(L"Name", L"narrow", 32);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"narrow");
    SetMachinePolicy(L"Name", L"wide", 64);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"wide");
}

TEST_F(MachinePolicyTest, EitherViewSwitchesOn) {
    EXPECT_FALSE(obarchive::PolicyIsOn(L"Name"));
    SetMachinePolicy(L"Name", L"1", 32);
    SetMachinePolicy(L"Name", L"0", 64);
    EXPECT_TRUE(obarchive::PolicyIsOn(L"Name"));
    SetMachinePolicy(L"Name", L"1", 64);
    SetMachinePolicy(L"Name", L"01", 32);
    EXPECT_TRUE(obarchive::PolicyIsOn(L"Name"));
    SetMachinePolicy(L"Name", L"10", 64);
    EXPECT_FALSE(obarchive::PolicyIsOn(L"Name"));
}

TEST_F(MachinePolicyTest, ANumberATextWithoutNulAndALongTextAreReadAndNoOtherType) {
    const DWORD number = 4294967295;
    const auto set = [](DWORD type, const void* data, DWORD size) {
        obtest::SetRawValue(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, L"Name", type, data, size);
    };
    set(REG_DWORD, &number, sizeof number);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"4294967295");
    set(REG_BINARY, &number, sizeof number);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"");
    set(REG_SZ, L"open", 8); // without its NUL
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"open");
    set(REG_SZ, nullptr, 0);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), L"");
    const std::wstring lengthy(5000, L'x');
    SetMachinePolicy(L"Name", lengthy);
    EXPECT_EQ(obarchive::PolicyText(L"Name"), lengthy);
}

TEST_F(MachinePolicyTest, AnAddressHasAtMost2047Characters) {
    const std::wstring longest = L"https://" + std::wstring(2047 - 8, L'x');
    SetMachinePolicy(L"Name", longest);
    EXPECT_EQ(obarchive::PolicyAddress(L"Name"), longest);
    SetMachinePolicy(L"Name", longest + L"x");
    EXPECT_EQ(obarchive::PolicyAddress(L"Name"), L"");
}

} // namespace

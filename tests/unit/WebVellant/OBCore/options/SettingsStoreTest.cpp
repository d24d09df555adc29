#include "OBCore/options/SettingsStore.h"

#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"
#include "tests/unit/WebVellant/OBCore/options/RegistryRecorder.h"

namespace {

constexpr wchar_t kName[] = L"Value";

class SettingsStore : public OptionsFixture {
protected:
    void SetUp() override {
        OptionsFixture::SetUp();
        obtest::MakeKey(HKEY_CURRENT_USER, obcore::kUserKey);
    }

    static void Store(DWORD type, const void* data, std::size_t size) {
        obtest::SetRawValue(HKEY_CURRENT_USER, obcore::kUserKey, kName, type, data,
                            static_cast<DWORD>(size));
    }

    static std::wstring Read() {
        const auto key = obcore::OpenUserKey(obcore::kUserKey);
        return obcore::ReadValue(key.Get(), kName);
    }

    // The sizes with which the value was asked for.
    static std::vector<std::string> SizesOfReading() {
        RegistryRecorder recorder;
        EXPECT_TRUE(recorder.Ok());
        Read();
        std::vector<std::string> sizes = recorder.LinesThatBeginWith("get ");
        for (std::string& line : sizes) line.erase(0, line.rfind(' ') + 1);
        return sizes;
    }
};

using Sizes = std::vector<std::string>;

TEST_F(SettingsStore, ReadsAShortTextAtOnceIntoFiveHundredAndTenBytes) {
    obtest::SetUserValue(kName, L"text");
    EXPECT_EQ(L"text", Read());
    EXPECT_EQ(Sizes({"510"}), SizesOfReading());
}

TEST_F(SettingsStore, ReadsATextThatJustFitsAtOnce) {
    const std::wstring text(254, L'x');
    obtest::SetUserValue(kName, text);
    EXPECT_EQ(text, Read());
    EXPECT_EQ(Sizes({"510"}), SizesOfReading());
}

TEST_F(SettingsStore, ReadsALongerTextAgainWithTheReportedSizeAndTwoBytes) {
    const std::wstring text(255, L'x');
    obtest::SetUserValue(kName, text);
    EXPECT_EQ(text, Read());
    EXPECT_EQ(Sizes({"510", "514"}), SizesOfReading());
}

TEST_F(SettingsStore, ReadsAVeryLongTextWhole) {
    const std::wstring text(40000, L'y');
    obtest::SetUserValue(kName, text);
    EXPECT_EQ(text, Read());
    EXPECT_EQ(Sizes({"510", "80004"}), SizesOfReading());
}

TEST_F(SettingsStore, ReadsTextsThatAreStoredWithoutTheirTerminator) {
    for (const std::size_t length : {1u, 4u, 254u, 255u, 256u, 3000u}) {
        SCOPED_TRACE(length);
        const std::wstring text(length, L'z');
        Store(REG_SZ, text.data(), length * sizeof(wchar_t));
        EXPECT_EQ(text, Read());
    }
}

int longReads;

LSTATUS WINAPI GrowWithEveryRead(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE data, LPDWORD size) {
    ++longReads;
    std::fill(data, data + *size, BYTE{'x'});
    *size += 100;
    return ERROR_MORE_DATA;
}

TEST_F(SettingsStore, TakesAValueThatOutgrowsTheSecondReadForAbsent) {
    const obtest::ImportPatch<decltype(RegQueryValueExW)> patch("advapi32.dll", "RegQueryValueExW",
                                                                &GrowWithEveryRead);
    ASSERT_TRUE(patch.Ok());
    longReads = 0;
    EXPECT_EQ(L"", Read());
    EXPECT_EQ(2, longReads);
}

TEST_F(SettingsStore, StopsAtTheFirstNul) {
    Store(REG_MULTI_SZ, L"one\0two\0", sizeof(L"one\0two\0"));
    EXPECT_EQ(L"one", Read());
}

TEST_F(SettingsStore, DropsHalfAUnitAtTheEnd) {
    const char bytes[] = {'1', 0, 'x'};
    Store(REG_BINARY, bytes, sizeof(bytes));
    EXPECT_EQ(L"1", Read());
}

TEST_F(SettingsStore, TakesAnyTypeOfValue) {
    const DWORD number = 0x0031; // the digit 1
    for (const DWORD type : {REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_BINARY, REG_DWORD}) {
        SCOPED_TRACE(type);
        Store(type, &number, sizeof(number));
        EXPECT_EQ(L"1", Read());
    }
}

TEST_F(SettingsStore, TakesAbsentAndEmptyForTheSame) {
    EXPECT_EQ(L"", Read());
    Store(REG_SZ, L"", sizeof(L""));
    EXPECT_EQ(L"", Read());
    Store(REG_SZ, L"", 0);
    EXPECT_EQ(L"", Read());
}

TEST_F(SettingsStore, LeavesAFieldAloneWhenItsValueIsAbsent) {
    const auto key = obcore::OpenUserKey(obcore::kUserKey);
    bool on = true;
    std::uint32_t number = 77;
    EXPECT_FALSE(obcore::ReadSwitch(key.Get(), kName, on));
    EXPECT_FALSE(obcore::ReadNumber(key.Get(), kName, number));
    EXPECT_TRUE(on);
    EXPECT_EQ(77u, number);
}

TEST_F(SettingsStore, KnowsBothSensesOfASwitch) {
    EXPECT_FALSE(obcore::IsUserSwitchOn(L"0"));
    for (const wchar_t* text : {L"1", L"2", L"00", L" 0", L"true", L"false"}) {
        EXPECT_TRUE(obcore::IsUserSwitchOn(text)) << text;
    }
    EXPECT_TRUE(obcore::IsPolicySwitchOn(L"1"));
    for (const wchar_t* text : {L"", L"0", L"2", L" 1", L"1 ", L"01", L"true"}) {
        EXPECT_FALSE(obcore::IsPolicySwitchOn(text)) << text;
    }
}

TEST_F(SettingsStore, ReadsNumbersAsTheRuntimeDoes) {
    EXPECT_EQ(12u, obcore::NumberOf(L"12"));
    EXPECT_EQ(12u, obcore::NumberOf(L"  12abc"));
    EXPECT_EQ(0u, obcore::NumberOf(L"abc"));
    EXPECT_EQ(0u, obcore::NumberOf(L""));
    EXPECT_EQ(0xFFFFFFFFu, obcore::NumberOf(L"-1"));
}

TEST_F(SettingsStore, WritesTextsWithTheirTerminator) {
    RegistryRecorder recorder;
    ASSERT_TRUE(recorder.Ok());
    const auto key = obcore::OpenUserKey(obcore::kUserKey);
    obcore::WriteValue(key.Get(), L"A", L"text");
    obcore::WriteValue(key.Get(), L"B", L"");
    obcore::WriteSwitch(key.Get(), L"C", true);
    obcore::WriteSwitch(key.Get(), L"D", false);
    obcore::WriteNumber(key.Get(), L"E", 4096);
    obcore::WriteNumber(key.Get(), L"F", 0xFFFFFFFF);
    const std::string path = "set SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix!";
    EXPECT_EQ(std::vector<std::string>({path + "A=text|", path + "B=|", path + "C=1|",
                                        path + "D=0|", path + "E=4096|", path + "F=-1|"}),
              recorder.LinesThatBeginWith("set "));
}

TEST_F(SettingsStore, OpensMachineKeysInTheViewAskedFor) {
    obtest::SetMachinePolicy(L"Where", L"low", 32);
    obtest::SetMachinePolicy(L"Where", L"high", 64);
    const auto read = [](obcore::RegistryView view) {
        return obcore::ReadValue(obcore::OpenMachineKey(obcore::kPolicyKey, view).Get(), L"Where");
    };
    EXPECT_EQ(L"low", read(obcore::RegistryView::Bits32));
    EXPECT_EQ(L"high", read(obcore::RegistryView::Bits64));
    EXPECT_EQ(L"high", read(obcore::RegistryView::Plain));
}

TEST_F(SettingsStore, NeverCreatesAMachineKey) {
    EXPECT_FALSE(obcore::OpenMachineKey(obcore::kPolicyKey));
    EXPECT_FALSE(obtest::KeyExists(HKEY_LOCAL_MACHINE, obcore::kPolicyKey));
}

} // namespace

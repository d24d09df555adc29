#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "ObLib/Src/Win32/ObXAppGlobals.h"

namespace {

using ObLib::ObXAppGlobals;

const HMODULE kProgram = reinterpret_cast<HMODULE>(0x1000);
const HMODULE kLanguage = reinterpret_cast<HMODULE>(0x2000);

// The object as another module sees it: a table of slots, then the fields.
void* Slot(ObXAppGlobals& globals, std::size_t number) {
    return (*reinterpret_cast<void***>(&globals))[number];
}

template <class Type>
Type& FieldAt(ObXAppGlobals& globals, std::size_t offset) {
    return *reinterpret_cast<Type*>(reinterpret_cast<char*>(&globals) + offset);
}

using Destroy = void* (*)(ObXAppGlobals*, std::uint32_t);
using SetModules = void (*)(ObXAppGlobals*, HMODULE, HMODULE, const wchar_t*, const wchar_t*);
using SetModule = void (*)(ObXAppGlobals*, HMODULE, const wchar_t*, const wchar_t*);
using Clear = void (*)(ObXAppGlobals*);

class AppGlobalsTest : public testing::Test {
protected:
    void Fill() {
        reinterpret_cast<SetModules>(Slot(globals_, 1))(&globals_, kProgram, kLanguage, L"first",
                                                        L"second");
        globals_.word64 = 64;
        globals_.word32 = 32;
    }

    void ExpectCleared() {
        EXPECT_EQ(globals_.programModule, nullptr);
        EXPECT_EQ(globals_.languageModule, nullptr);
        EXPECT_EQ(globals_.word64, 0u);
        EXPECT_EQ(globals_.word32, 0u);
        for (const wchar_t unit : globals_.firstText) EXPECT_EQ(unit, L'\0');
        for (const wchar_t unit : globals_.secondText) EXPECT_EQ(unit, L'\0');
    }

    ObXAppGlobals globals_;
};

TEST_F(AppGlobalsTest, BeginsEmpty) { ExpectCleared(); }

TEST_F(AppGlobalsTest, KeepsItsFieldsInTheirOrder) {
    Fill();
    EXPECT_EQ(FieldAt<HMODULE>(globals_, 8), kProgram);
    EXPECT_EQ(FieldAt<HMODULE>(globals_, 16), kLanguage);
    EXPECT_EQ(FieldAt<std::uint64_t>(globals_, 24), 64u);
    EXPECT_EQ(FieldAt<std::uint32_t>(globals_, 32), 32u);
    EXPECT_STREQ(&FieldAt<wchar_t>(globals_, 36), L"first");
    EXPECT_STREQ(&FieldAt<wchar_t>(globals_, 36 + 261 * 2), L"second");
    EXPECT_EQ(sizeof(globals_), 36u + 2 * 261 * 2);
}

TEST_F(AppGlobalsTest, HasOneDestructorSlotThatClearsAndGivesTheObject) {
    Fill();
    EXPECT_EQ(reinterpret_cast<Destroy>(Slot(globals_, 0))(&globals_, 0), &globals_);
    ExpectCleared();
}

TEST_F(AppGlobalsTest, StoresOneModuleInBothFieldsThroughTheThirdSlot) {
    reinterpret_cast<SetModule>(Slot(globals_, 2))(&globals_, kProgram, L"a", L"b");
    EXPECT_EQ(globals_.programModule, kProgram);
    EXPECT_EQ(globals_.languageModule, kProgram);
    EXPECT_STREQ(globals_.firstText, L"a");
    EXPECT_STREQ(globals_.secondText, L"b");
}

TEST_F(AppGlobalsTest, ClearsAllFieldsThroughTheFourthSlot) {
    Fill();
    reinterpret_cast<Clear>(Slot(globals_, 3))(&globals_);
    ExpectCleared();
}

TEST_F(AppGlobalsTest, TakesTextsOf260Characters) {
    const std::wstring longest(260, L'x');
    globals_.SetModules(kProgram, kLanguage, longest.c_str(), longest.c_str());
    EXPECT_EQ(globals_.firstText, longest);
    EXPECT_EQ(globals_.secondText, longest);
}

TEST_F(AppGlobalsTest, EndsTheProcessAtATextThatDoesNotFit) {
    const auto isFailFast = [](int code) { return static_cast<DWORD>(code) == 0xC0000409; };
    const std::wstring tooLong(261, L'x');
    EXPECT_EXIT(globals_.SetModules(kProgram, kLanguage, tooLong.c_str(), L""), isFailFast, "");
    EXPECT_EXIT(globals_.SetModules(kProgram, kLanguage, L"", tooLong.c_str()), isFailFast, "");
    EXPECT_EXIT(globals_.SetModule(kProgram, L"", tooLong.c_str()), isFailFast, "");
}

TEST_F(AppGlobalsTest, IsOneObjectInTheProcess) {
    EXPECT_EQ(&ObLib::AppGlobals(), &ObLib::AppGlobals());
}

} // namespace

// Strings from string tables: the language module's is searched first, then the program's own.
#include <windows.h>

#include "ObLib/Src/ObString.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::ObString;

class StringTable : public testing::Test {
protected:
    void TearDown() override { ObLib::AppGlobals().Clear(); }
};

TEST_F(StringTable, WithoutALanguageModuleTheProgramsOwnTableAnswers) {
    ObString string;
    EXPECT_TRUE(string.LoadString(1000));
    EXPECT_STREQ(L"Short", string.CStr());
    EXPECT_STREQ(L"Number nought", ObString(0).CStr());
    EXPECT_STREQ(L"The highest", ObString(65535).CStr());
    const ObString constructed(1001);
    EXPECT_STREQ(L"A text of the program's own table, longer than what is inline",
                 constructed.CStr());
    EXPECT_EQ(61u, constructed.Length());
}

TEST_F(StringTable, TheLanguageModuleAnswersFirst) {
    // A module of the system that has a table; the first entry is looked for.
    const ObLib::UniqueModule language(
        LoadLibraryExW(L"shell32.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE));
    ASSERT_TRUE(language);
    wchar_t expected[256] = {};
    int id = 1;
    while (id < 10000 && LoadStringW(language.Get(), id, expected, 256) == 0) ++id;
    ASSERT_LT(id, 10000);
    EXPECT_TRUE(ObString(id).IsNull()) << "the program has no such text";
    ObLib::AppGlobals().SetModule(language.Get(), L"", L"");
    EXPECT_STREQ(expected, ObString(id).CStr());
}

TEST_F(StringTable, TheProgramAnswersForWhatTheLanguageModuleLacks) {
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    EXPECT_STREQ(L"The highest", ObString(65535).CStr());
}

TEST_F(StringTable, ATextThatNobodyHasMakesANullString) {
    ObString string(L"before");
    EXPECT_FALSE(string.LoadString(4242));
    EXPECT_TRUE(string.IsNull());
    EXPECT_FALSE(string.LoadString(0x10000 + 1000)) << "ids have 16 bits";
}

TEST_F(StringTable, ANegativeIdEndsTheProcess) { EXPECT_FATAL_ASSERT(ObString(-1), "ObString"); }

} // namespace

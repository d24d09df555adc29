// Paths of folders, and names in them.
#include "services/providers/folder/FolderPath.h"

#include <gtest/gtest.h>

#include <string>

using namespace providers;

namespace {

TEST(FolderPath, TakesFullPathsOfDrivesAndShares) {
    EXPECT_EQ(FullFolderPath(L"C:\\Users\\Ann\\Cloud"), L"C:\\Users\\Ann\\Cloud");
    EXPECT_EQ(FullFolderPath(L"  \"C:\\My Cloud\\\" "), L"C:\\My Cloud");
    EXPECT_EQ(FullFolderPath(L"c:/a//b/../c/"), L"c:\\a\\c");
    EXPECT_EQ(FullFolderPath(L"C:"), L"C:\\");
    EXPECT_EQ(FullFolderPath(L"C:\\"), L"C:\\");
    EXPECT_EQ(FullFolderPath(L"\\\\server\\share"), L"\\\\server\\share");
    EXPECT_EQ(FullFolderPath(L"\\\\server\\share\\"), L"\\\\server\\share");
    EXPECT_EQ(FullFolderPath(L"//server/share/a b"), L"\\\\server\\share\\a b");
}

TEST(FolderPath, TakesNoOtherPaths) {
    for (const wchar_t* bad : {L"",
                               L" ",
                               L"\"\"",
                               L"Cloud",
                               L"..\\Cloud",
                               L"\\Cloud",
                               L"C:Cloud",
                               L"\\\\server",
                               L"\\\\server\\",
                               L"\\\\\\share",
                               L"\\\\.\\pipe\\x",
                               L"\\\\?\\C:\\x",
                               L"1:\\x",
                               L"C:\\a|b",
                               L"C:\\a*",
                               L"C:\\a?",
                               L"C:\\a<b",
                               L"C:\\a:b",
                               L"C:\\a\tb",
                               L"\\\\server\\share\\a:b",
                               L"https://h/x"}) {
        EXPECT_EQ(FullFolderPath(bad), L"") << bad;
    }
    EXPECT_NE(FullFolderPath(L"C:\\" + std::wstring(kLongestFolder - 3, L'x')), L"");
    EXPECT_EQ(FullFolderPath(L"C:\\" + std::wstring(kLongestFolder - 2, L'x')), L"");
}

TEST(FolderPath, CallsAFolderByItsLastComponent) {
    EXPECT_EQ(FolderLabel(L"C:\\Users\\Ann\\Cloud"), L"Cloud");
    EXPECT_EQ(FolderLabel(L"\\\\server\\share"), L"share");
    EXPECT_EQ(FolderLabel(L"C:\\"), L"C:");
}

TEST(FolderPath, PutsNamesBelowFoldersAndDrives) {
    EXPECT_EQ(BelowFolder(L"C:\\", L"x"), L"C:\\x");
    EXPECT_EQ(BelowFolder(L"C:\\a", L"x\\y"), L"C:\\a\\x\\y");
    EXPECT_EQ(BelowFolder(L"C:\\a", L""), L"C:\\a\\");
}

TEST(FolderPath, KnowsWhichNamesWindowsTakes) {
    for (const std::wstring& good :
         {std::wstring(L"a.zip"), std::wstring(L".a"), std::wstring(L"a..b"), std::wstring(L" a"),
          std::wstring(L"console.txt"), std::wstring(L"COM10"), std::wstring(L"COM0"),
          std::wstring(L"\u00E4 \U0001F511.zip"), std::wstring(255, L'x')}) {
        EXPECT_TRUE(IsFileName(good)) << good;
    }
    for (const std::wstring& bad : {std::wstring(),
                                    std::wstring(L"."),
                                    std::wstring(L".."),
                                    std::wstring(L"a."),
                                    std::wstring(L"a "),
                                    std::wstring(L"a\\b"),
                                    std::wstring(L"a/b"),
                                    std::wstring(L"a:b"),
                                    std::wstring(L"a|b"),
                                    std::wstring(L"a*"),
                                    std::wstring(L"a?"),
                                    std::wstring(L"<a>"),
                                    std::wstring(L"\"a\""),
                                    std::wstring(L"a\nb"),
                                    std::wstring(L"con"),
                                    std::wstring(L"NUL.zip"),
                                    std::wstring(L"Aux.tar.zip"),
                                    std::wstring(L"lpt1"),
                                    std::wstring(L"COM\u00B2.zip"),
                                    std::wstring(L"prn .zip"),
                                    std::wstring(L"CONOUT$"),
                                    std::wstring(1, L'\xD83D'),
                                    std::wstring(1, L'\xDD11') + L"a",
                                    std::wstring(256, L'x')}) {
        EXPECT_FALSE(IsFileName(bad)) << bad;
    }
}

} // namespace

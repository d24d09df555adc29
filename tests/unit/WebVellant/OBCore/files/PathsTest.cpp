#include "OBCore/files/Paths.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace {

using obcore::CombinePath;
using obcore::ExtendedPath;

const std::wstring kLongName(255, L'n');

TEST(Paths, JoinsWithOneSeparator) {
    EXPECT_EQ(CombinePath(L"C:\\folder\\", L"a.txt"), L"C:\\folder\\a.txt");
    EXPECT_EQ(CombinePath(L"C:\\folder", L"a.txt"), L"C:\\folder\\a.txt");
}

TEST(Paths, KeepsANameThatBeginsWithPointsInItsFolder) {
    for (const wchar_t* name : {L".one", L"..two.txt", L"...three", L"....", L"a..b", L"a.."}) {
        const std::wstring path = std::wstring(L"C:\\folder\\run\\") + name;
        EXPECT_EQ(CombinePath(L"C:\\folder\\run\\", name), path);
        EXPECT_EQ(CombinePath(L"C:\\folder\\run", name), path);
    }
}

TEST(Paths, JoinsUpToTheLimitOfThePlatform) {
    const std::wstring folder = L"C:\\" + std::wstring(200, L'f') + L"\\";
    const std::wstring name(MAX_PATH - 1 - folder.size(), L'n');
    EXPECT_EQ(CombinePath(folder, name), folder + name);
}

TEST(Paths, PutsATooLongPathTogetherAsItIs) {
    const std::wstring folder = L"C:\\" + std::wstring(200, L'f') + L"\\";
    EXPECT_EQ(CombinePath(folder, kLongName), folder + kLongName);
    EXPECT_EQ(CombinePath(folder.substr(0, folder.size() - 1), kLongName), folder + kLongName);
}

TEST(Paths, LeavesAShortPathAlone) {
    EXPECT_EQ(ExtendedPath(L"C:\\a.txt"), L"C:\\a.txt");
    EXPECT_EQ(ExtendedPath(L""), L"");
    const std::wstring longestShort = L"C:\\" + std::wstring(MAX_PATH - 4, L'n');
    EXPECT_EQ(ExtendedPath(longestShort), longestShort);
}

TEST(Paths, GivesALongFullPathItsExtendedForm) {
    const std::wstring onDrive = L"C:\\f\\" + kLongName;
    const std::wstring onShare = L"\\\\server\\share\\" + kLongName;
    EXPECT_EQ(ExtendedPath(onDrive), L"\\\\?\\" + onDrive);
    EXPECT_EQ(ExtendedPath(onShare), L"\\\\?\\UNC\\server\\share\\" + kLongName);
}

TEST(Paths, LeavesALongPathThatHasAPrefixOrIsNotFullAlone) {
    const std::wstring extended = L"\\\\?\\C:\\" + kLongName;
    const std::wstring device = L"\\\\.\\" + kLongName + L"x";
    const std::wstring relative = kLongName + L"\\relative";
    EXPECT_EQ(ExtendedPath(extended), extended);
    EXPECT_EQ(ExtendedPath(device), device);
    EXPECT_EQ(ExtendedPath(relative), relative);
}

} // namespace

#include "ObLib/Src/Win32/LongPath.h"

#include <gtest/gtest.h>

namespace {

using ObLib::WithLongPathPrefix;
using ObLib::WithoutLongPathPrefix;

TEST(LongPath, PutsThePrefixBeforeAFullPath) {
    EXPECT_EQ(L"\\\\?\\C:\\folder\\a.txt", WithLongPathPrefix(L"C:\\folder\\a.txt"));
    EXPECT_EQ(L"\\\\?\\UNC\\server\\share\\a.txt", WithLongPathPrefix(L"\\\\server\\share\\a.txt"));
}

TEST(LongPath, LeavesOtherPathsAsTheyAre) {
    for (const wchar_t* path :
         {L"", L"a", L"a.txt", L"C:a.txt", L"\\a.txt", L"folder\\a.txt", L"\\\\?\\C:\\a.txt",
          L"\\\\?\\UNC\\server\\share", L"\\\\.\\pipe\\a"}) {
        EXPECT_EQ(path, WithLongPathPrefix(path));
    }
}

TEST(LongPath, TakesThePrefixOffAgain) {
    EXPECT_EQ(L"C:\\folder\\a.txt", WithoutLongPathPrefix(L"\\\\?\\C:\\folder\\a.txt"));
    EXPECT_EQ(L"\\\\server\\share\\a.txt",
              WithoutLongPathPrefix(L"\\\\?\\UNC\\server\\share\\a.txt"));
    for (const wchar_t* path :
         {L"", L"a.txt", L"C:\\a.txt", L"\\\\server\\share", L"\\\\.\\pipe\\a"}) {
        EXPECT_EQ(path, WithoutLongPathPrefix(path));
    }
}

} // namespace

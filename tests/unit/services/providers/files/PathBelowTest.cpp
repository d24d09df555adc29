#include "services/providers/files/PathBelow.h"

#include <gtest/gtest.h>

namespace {

using providers::IsPathBelow;

TEST(PathBelow, IsTrueAtAnyDepthAndInAnyCase) {
    EXPECT_TRUE(IsPathBelow(L"C:\\Programs\\a.exe", L"C:\\Programs"));
    EXPECT_TRUE(IsPathBelow(L"c:\\programs\\deep\\a.exe", L"C:\\Programs"));
}

TEST(PathBelow, IsFalseForTheFolderItselfItsSiblingsAndAnEmptyFolder) {
    EXPECT_FALSE(IsPathBelow(L"C:\\Programs", L"C:\\Programs"));
    EXPECT_FALSE(IsPathBelow(L"C:\\Programs\\", L"C:\\Programs"));
    EXPECT_FALSE(IsPathBelow(L"C:\\Programs2\\a.exe", L"C:\\Programs"));
    EXPECT_FALSE(IsPathBelow(L"C:\\a.exe", L"C:\\Programs"));
    EXPECT_FALSE(IsPathBelow(L"\\a.exe", L""));
}

} // namespace

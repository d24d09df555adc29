#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/PickLimits.h"

namespace {

using providers::FitsLinkText;
using providers::NameWithLink;
using providers::PickedFile;

constexpr std::size_t kLongestName = 1568; // of a file in its record
constexpr std::size_t kLongestText = 32729;
// "|||", the sentence with at most 511 characters, " *: |||".
constexpr std::size_t kAround = 3 + 511 + 7;

PickedFile File(const std::wstring& name, const std::wstring& link) {
    return {{L"key", L"label"}, name, link};
}

// A file whose name with its link has so many characters.
PickedFile FileOfLength(std::size_t length, wchar_t first) {
    const std::wstring link = L"https://example.org/1";
    return File(first + std::wstring(length - link.size() - 2, L'x'), link);
}

// Files that leave so many characters of the text to the last one, with a name of a provider of
// three characters: each takes "||", its name, and the provider with "||".
std::vector<PickedFile> FilesThatLeave(std::size_t rest) {
    constexpr std::size_t kEach = 1000;
    constexpr std::size_t kAroundName = 2 + 3 + 2;
    std::vector<PickedFile> files;
    std::size_t left = kLongestText - kAround - rest;
    for (wchar_t first = L'A'; left > kEach + kAroundName + 100; ++first) {
        files.push_back(FileOfLength(kEach, first));
        left -= kEach + kAroundName;
    }
    files.push_back(FileOfLength(left - kAroundName, L'z'));
    return files;
}

TEST(PickLimits, TheRecordHasRoomForTheLongestName) {
    EXPECT_EQ(std::size(obcontract::CloudItem{}.name), kLongestName + 1);
}

TEST(PickLimits, APickedFileGetsItsNameABlankAndItsLink) {
    EXPECT_EQ(NameWithLink(File(L"a b.pdf", L"https://example.org/s/1")),
              L"a b.pdf https://example.org/s/1");
}

TEST(PickLimits, APipeInALinkIsEscapedAndInANameItBecomesABlank) {
    EXPECT_EQ(NameWithLink(File(L"a|b||.pdf", L"https://example.org/x|y||z")),
              L"a b  .pdf https://example.org/x%7Cy%7C%7Cz");
}

TEST(PickLimits, ANameWithItsLinkFitsUpToTheRecordsRoom) {
    EXPECT_TRUE(FitsLinkText(std::vector{FileOfLength(kLongestName, L'a')}, L"WebDAV"));
    EXPECT_FALSE(FitsLinkText(std::vector{FileOfLength(kLongestName + 1, L'a')}, L"WebDAV"));
}

TEST(PickLimits, OneLongNameAmongShortOnesDoesntFit) {
    EXPECT_FALSE(FitsLinkText(
        std::vector{File(L"a", L"b"), FileOfLength(kLongestName + 1, L'a'), File(L"c", L"d")},
        L"WebDAV"));
}

TEST(PickLimits, EscapedPipesCount) {
    // The name takes 4 characters, each pipe of the link 3.
    const auto file = [](std::size_t pipes) { return File(L"abcd", std::wstring(pipes, L'|')); };
    EXPECT_EQ(NameWithLink(file(521)).size(), kLongestName);
    EXPECT_TRUE(FitsLinkText(std::vector{file(521)}, L"WebDAV"));
    EXPECT_FALSE(FitsLinkText(std::vector{file(522)}, L"WebDAV"));
}

TEST(PickLimits, AllFilesFitUpToTheTextsRoom) {
    EXPECT_TRUE(FitsLinkText(FilesThatLeave(0), L"abc"));
    EXPECT_FALSE(FitsLinkText(FilesThatLeave(0), L"abcd"));
    std::vector<PickedFile> files = FilesThatLeave(2 + 3 + 2 + 3);
    files.push_back(File(L"1", L"2")); // "1 2"
    EXPECT_TRUE(FitsLinkText(files, L"abc"));
    files.back() = File(L"1", L"22");
    EXPECT_FALSE(FitsLinkText(files, L"abc"));
}

TEST(PickLimits, TwoFilesOfOneNameAndLinkCountOnce) {
    std::vector<PickedFile> files = FilesThatLeave(0);
    files.push_back(files.front());
    EXPECT_TRUE(FitsLinkText(files, L"abc"));
}

TEST(PickLimits, NoFileFits) { EXPECT_TRUE(FitsLinkText({}, L"WebDAV")); }

} // namespace

#include "services/archive/zip/ZipRun.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <zip.h>

#include <random>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "services/archive/Paths.h"
#include "services/archive/zip/ReadAhead.h"
#include "services/archive/zip/SourceFile.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace {

using obarchive::RunZip;
using obarchive::ZipJob;
using obarchive::ZipResult;
using obtest::ReadEntry;
using obtest::ReadRawEntries;
using obtest::ReadZip;
using obtest::TestFolder;

std::string Noise(std::size_t size) {
    std::mt19937 random(42);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

class ZipRunTest : public testing::Test {
protected:
    ZipRunTest() { job_.target = out_ / L"result.zip"; }

    void Add(const std::wstring& name, const std::string& content) {
        job_.files.push_back(in_.File(name, content));
        expected_.push_back({ObLib::ToUtf8(name), content});
    }

    void Encrypt(std::uint32_t method) {
        job_.encryptionMethod = method;
        job_.password = obarchive::Secret("p\xC3\xA4ss w\xC3\xB6rd");
    }

    // What of the content can't be made smaller is to be stored.
    static bool Shrinks(const std::string& content) {
        return content.size() > 20 && content.find(Noise(20)) == std::string::npos;
    }

    // Runs the job and compares every entry with what was added.
    void RunAndCompare(std::uint16_t method, std::uint16_t encryption) {
        ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
        const auto entries = ReadZip(job_.target, job_.password.Text());
        ASSERT_TRUE(entries);
        ASSERT_EQ(entries->size(), expected_.size());
        for (std::size_t index = 0; index < expected_.size(); ++index) {
            const ReadEntry& entry = (*entries)[index];
            EXPECT_EQ(entry.name, expected_[index].first);
            EXPECT_TRUE(entry.content == expected_[index].second) << entry.name;
            EXPECT_EQ(entry.method, Shrinks(entry.content) ? method : ZIP_CM_STORE) << entry.name;
            EXPECT_EQ(entry.encryption, encryption);
        }
        EXPECT_EQ(obtest::ListTree(out_.Path()), std::vector<std::wstring>{L"result.zip"});
    }

    void AddUsualFiles() {
        Add(L"text.txt", std::string(300'000, 'a') + "end");
        Add(L"empty.bin", "");
        Add(L"one.bin", "1");
        Add(L"noise.bin", Noise(700'001));
        for (const int size : {15, 16, 19, 20, 8191, 8192, 8193, 262143, 262144, 262145}) {
            Add(L"noise" + std::to_wstring(size), Noise(static_cast<std::size_t>(size)));
        }
    }

    TestFolder in_;
    TestFolder out_;
    ZipJob job_;
    std::vector<std::pair<std::string, std::string>> expected_;
};

// A text of words, which shrinks to about a third.
std::string Prose(std::size_t size) {
    std::mt19937 random(7);
    std::string text;
    while (text.size() < size) {
        text += "word" + std::to_string(random() % 3000) + (random() % 9 ? " " : ".\n");
    }
    text.resize(size);
    return text;
}

TEST_F(ZipRunTest, DeflatesByDefault) {
    AddUsualFiles();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

TEST_F(ZipRunTest, WritesXzForTheZipxMethod) {
    job_.compressionMethod = 0xFFFFFFFF;
    AddUsualFiles();
    RunAndCompare(ZIP_CM_XZ, ZIP_EM_NONE);
}

TEST_F(ZipRunTest, EncryptsWithAes128) {
    Encrypt(4);
    AddUsualFiles();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_AES_128);
}

TEST_F(ZipRunTest, EncryptsWithAes256) {
    Encrypt(8);
    AddUsualFiles();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_AES_256);
}

TEST_F(ZipRunTest, EncryptsXzToo) {
    job_.compressionMethod = 0xFFFFFFFF;
    Encrypt(8);
    AddUsualFiles();
    RunAndCompare(ZIP_CM_XZ, ZIP_EM_AES_256);
}

class ZipBlocksTest : public ZipRunTest {
protected:
    // The library that reads it back takes its time to decrypt: encrypted runs get fewer files.
    void AddTwoFiles() {
        Add(L"prose", Prose(obarchive::kBlockSize + 1));
        Add(L"noise", Noise(obarchive::kBlockSize + 17));
        Add(L"small", Prose(5000));
    }

    void AddBorders() {
        constexpr std::size_t kBlock = obarchive::kBlockSize;
        for (const std::size_t size :
             {kBlock - 1, kBlock, kBlock + 1, 2 * kBlock, 3 * kBlock + 7}) {
            Add(L"prose" + std::to_wstring(size), Prose(size));
            Add(L"noise" + std::to_wstring(size), Noise(size));
        }
        Add(L"small", Prose(5000));
    }
};

TEST_F(ZipBlocksTest, LargeFilesArePackedInBlocksThatJoin) {
    AddBorders();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

TEST_F(ZipBlocksTest, LargeFilesAreEncryptedAcrossTheirBlocks) {
    Encrypt(8);
    AddTwoFiles();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_AES_256);
}

TEST_F(ZipBlocksTest, LargeFilesArePackedWithXzInOneStream) {
    job_.compressionMethod = 0xFFFFFFFF;
    Encrypt(4);
    AddTwoFiles();
    RunAndCompare(ZIP_CM_XZ, ZIP_EM_AES_128);
}

class ZipDuplicatesTest : public ZipRunTest {
protected:
    void AddDuplicates() {
        job_.duplicateReferences = true;
        for (const wchar_t* folder : {L"one", L"two", L"three"}) {
            in_.Folder(folder);
            const std::wstring prefix = folder + std::wstring(L"\\") + folder;
            Add(prefix + L" large", Prose(2'500'000));
            Add(prefix + L" small", Prose(70'000));
            Add(prefix + L" noise", Noise(2'200'000));
            Add(prefix + L" empty", "");
            Add(prefix + L" other", Prose(69'990) + std::string(10, static_cast<char>(*folder)));
        }
        for (auto& [name, content] : expected_) name = name.substr(name.find('\\') + 1);
    }

    std::uint64_t ZipSize() { return obtest::ReadFileContent(job_.target).value_or("").size(); }
};

TEST_F(ZipDuplicatesTest, FilesWithEqualContentAreWholeAndEqualInTheZip) {
    AddDuplicates();
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
    const auto raw = ReadRawEntries(job_.target);
    ASSERT_EQ(raw.size(), 15U);
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_EQ(raw[index].packed, raw[index + 5].packed);
        EXPECT_EQ(raw[index].packed, raw[index + 10].packed);
        EXPECT_EQ(raw[index].checksum, raw[index + 5].checksum);
    }
}

TEST_F(ZipDuplicatesTest, EncryptedDuplicatesDiffer) {
    AddDuplicates();
    Encrypt(8);
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_AES_256);
    const auto raw = ReadRawEntries(job_.target);
    ASSERT_EQ(raw.size(), 15U);
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(raw[index].packed.size(), raw[index + 5].packed.size());
        EXPECT_NE(raw[index].packed.substr(0, 16), raw[index + 5].packed.substr(0, 16));
        EXPECT_NE(raw[index].packed.substr(18, 64), raw[index + 5].packed.substr(18, 64));
    }
}

TEST_F(ZipDuplicatesTest, DuplicatesInAZipxAreStoredWhole) {
    AddDuplicates();
    job_.compressionMethod = 0xFFFFFFFF;
    Encrypt(4);
    RunAndCompare(ZIP_CM_XZ, ZIP_EM_AES_128);
}

// Shown by a content that takes long to pack and no time to copy: the progress counts each byte
// once.
TEST_F(ZipDuplicatesTest, ProgressCountsADuplicateOnce) {
    AddDuplicates();
    std::uint64_t bytes = 0;
    std::uint64_t total = 0;
    const auto progress = [&](const obarchive::ZipProgress& now) {
        EXPECT_GE(now.bytesRead, bytes);
        EXPECT_LE(now.bytesRead, now.totalBytes);
        bytes = now.bytesRead;
        total = now.totalBytes;
        return true;
    };
    ASSERT_EQ(RunZip(job_, progress), ZipResult::Ok);
    EXPECT_EQ(bytes, total);
    EXPECT_EQ(total, 3U * (2'500'000U + 70'000U + 2'200'000U + 70'000U));
}

TEST_F(ZipRunTest, AWrongPasswordOpensNothing) {
    Encrypt(8);
    Add(L"a.txt", "secret content");
    ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
    EXPECT_FALSE(ReadZip(job_.target, "pass word"));
    EXPECT_FALSE(ReadZip(job_.target));
    EXPECT_TRUE(ReadZip(job_.target, job_.password.Text()));
}

TEST_F(ZipRunTest, EncryptedEntriesAreAe2WithoutAChecksum) {
    Encrypt(8);
    Add(L"a.txt", std::string(1000, 'x'));
    Add(L"b.txt", "short");
    Add(L"c.txt", "");
    ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
    const auto raw = ReadRawEntries(job_.target);
    ASSERT_EQ(raw.size(), 3U);
    // Vendor version 2, AES-256, and the method after it: deflate, or none for what doesn't
    // shrink.
    const std::string field("\2\0AE\3\x08\0", 7);
    const std::string emptyField("\2\0AE\3\0\0", 7);
    for (const auto& entry : raw) {
        EXPECT_EQ(entry.method, 99);
        EXPECT_EQ(entry.flags & 1, 1);
        EXPECT_EQ(entry.checksum, 0U);
        EXPECT_EQ(entry.localChecksum, 0U);
        ASSERT_EQ(entry.extras.count(0x9901), 1U);
        EXPECT_EQ(entry.extras.at(0x9901), &entry == &raw.front() ? field : emptyField);
    }
}

TEST_F(ZipRunTest, PlainEntriesKeepTheirChecksum) {
    Add(L"a.txt", "123456789");
    ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
    EXPECT_EQ(ReadRawEntries(job_.target).at(0).checksum, 0xCBF43926U);
    EXPECT_EQ(ReadRawEntries(job_.target).at(0).localChecksum, 0xCBF43926U);
}

TEST_F(ZipRunTest, NamesBeyondAsciiAreMarkedAsUtf8) {
    Add(L"\u00FCml\u00E4ut.txt", "1");
    Add(L"e\u0301 combining.txt", "2");
    Add(L"\U0001F600.txt", "3");
    Add(L"plain.txt", "4");
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
    const auto raw = ReadRawEntries(job_.target);
    ASSERT_EQ(raw.size(), 4U);
    for (int index = 0; index < 3; ++index) EXPECT_EQ(raw[index].flags & 0x800, 0x800);
}

TEST_F(ZipRunTest, TwoFilesOfOneNameAreBothKept) {
    in_.Folder(L"one");
    in_.Folder(L"two");
    Add(L"one\\x.txt", "first");
    Add(L"two\\x.txt", "second");
    expected_[0].first = "x.txt";
    expected_[1].first = "x (2).txt";
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

TEST_F(ZipRunTest, TheSamePathTwiceIsStoredOnce) {
    Add(L"x.txt", "content");
    job_.files.push_back(job_.files.front());
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

FILETIME TimeOf(int year, int month, int day, int hour, int minute, int second) {
    const SYSTEMTIME parts{
        static_cast<WORD>(year),  static_cast<WORD>(month), 0,
        static_cast<WORD>(day),   static_cast<WORD>(hour),  static_cast<WORD>(minute),
        static_cast<WORD>(second)};
    FILETIME time{};
    SystemTimeToFileTime(&parts, &time);
    return time;
}

void SetTime(const std::wstring& path, const FILETIME& time) {
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
}

TEST_F(ZipRunTest, ModificationTimesAreKept) {
    Add(L"x.txt", "content");
    const FILETIME time = TimeOf(2019, 3, 4, 5, 6, 8);
    SetTime(job_.files[0], time);
    ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
    const std::time_t seconds = 1551675968; // 2019-03-04 05:06:08
    EXPECT_EQ(ReadZip(job_.target)->at(0).modified, seconds);
    const auto raw = ReadRawEntries(job_.target).at(0);
    EXPECT_EQ(raw.extras.at(0x5455), std::string("\x01\x40\xB2\x7C\x5C", 5));
    EXPECT_EQ(raw.extras.at(0x000a).substr(8, 8),
              std::string(reinterpret_cast<const char*>(&time), 8));
}

TEST_F(ZipRunTest, TimesOutsideTheRangeOfAZipBecomeItsFirstOrLast) {
    constexpr std::int64_t kDay = 24 * 60 * 60;
    const std::int64_t first = obarchive::ZipTime(TimeOf(1970, 6, 1, 0, 0, 0));
    EXPECT_NEAR(static_cast<double>(first), 315532800.0, kDay); // 1980-01-01
    const std::int64_t last = obarchive::ZipTime(TimeOf(2200, 6, 1, 0, 0, 0));
    EXPECT_NEAR(static_cast<double>(last), 4354819198.0, kDay); // 2107-12-31 23:59:58
}

TEST_F(ZipRunTest, SourcesAreOnlyReadAndSharedWithEverybody) {
    Add(L"open.txt", "content");
    const ObLib::UniqueKernelHandle other(
        CreateFileW(job_.files[0].c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    0, nullptr));
    ASSERT_TRUE(other);
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

TEST_F(ZipRunTest, ReadOnlySourcesAreStored) {
    Add(L"readonly.txt", "content");
    SetFileAttributesW(job_.files[0].c_str(), FILE_ATTRIBUTE_READONLY);
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
    SetFileAttributesW(job_.files[0].c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ZipRunTest, PathsBeyondTheOldLimitWork) {
    std::wstring deep = L"\\\\?\\" + in_.Path();
    std::wstring deepOut = L"\\\\?\\" + out_.Path();
    for (int level = 0; level < 4; ++level) {
        deep += L"\\" + std::wstring(100, L'd');
        deepOut += L"\\" + std::wstring(100, L'o');
        ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
        ASSERT_TRUE(CreateDirectoryW(deepOut.c_str(), nullptr));
    }
    ASSERT_TRUE(obtest::WriteFileContent(deep + L"\\deep.txt", "deep content"));
    // Given as people give it, without the prefix.
    job_.files = {deep.substr(4) + L"\\deep.txt"};
    job_.target = deepOut.substr(4) + L"\\deep.zip";
    ASSERT_EQ(RunZip(job_, {}), ZipResult::Ok);
    const auto entries = ReadZip(deepOut + L"\\deep.zip");
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->at(0).content, "deep content");
}

TEST_F(ZipRunTest, HundredsOfFilesFit) {
    for (int index = 0; index < 500; ++index) {
        Add(L"f" + std::to_wstring(index) + L".txt", std::to_string(index));
    }
    RunAndCompare(ZIP_CM_DEFLATE, ZIP_EM_NONE);
}

TEST_F(ZipRunTest, ProgressReportsEveryByteAndTheFile) {
    Add(L"a.bin", Noise(1'000'000));
    Add(L"b.bin", "12345");
    std::uint64_t bytes = 0;
    std::wstring last;
    const auto progress = [&](const obarchive::ZipProgress& now) {
        EXPECT_GE(now.bytesRead, bytes);
        bytes = now.bytesRead;
        last = now.file;
        return true;
    };
    ASSERT_EQ(RunZip(job_, progress), ZipResult::Ok);
    EXPECT_EQ(bytes, 1'000'005U);
    EXPECT_EQ(last, job_.files[1]);
}

} // namespace

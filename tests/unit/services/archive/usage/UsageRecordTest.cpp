#include "services/archive/usage/UsageRecord.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include <cstdlib>
#include <map>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

namespace {

using obarchive::UsageRecord;
using obtest::ReadFileContent;
using obtest::TestFolder;

using Tree = std::vector<std::wstring>;

constexpr SYSTEMTIME kTime{2026, 11, 0, 5, 7, 8, 9, 123};

class UsageRecordTest : public testing::Test {
protected:
    // The record's own folder and the one above it don't exist yet.
    std::wstring Folder() const { return root_ / L"maker\\product"; }
    std::wstring Current() const { return Folder() + L"\\usage.txt"; }
    std::wstring Older() const { return Folder() + L"\\usage.old.txt"; }

    TestFolder root_;
};

TEST_F(UsageRecordTest, ALineContainsTimeEventAndDetails) {
    const UsageRecord record(Folder());
    EXPECT_EQ(obtest::ListTree(root_.Path()), Tree{});
    EXPECT_TRUE(record.Append(kTime, L"feature.file-send", L"file-send.type=attachment"));
    EXPECT_TRUE(record.Append(kTime, L"exit", L""));
    EXPECT_EQ(ReadFileContent(Current()),
              "2026-11-05T07:08:09Z\tfeature.file-send\tfile-send.type=attachment\r\n"
              "2026-11-05T07:08:09Z\texit\t\r\n");
    EXPECT_FALSE(obtest::FileExists(Older()));
}

TEST_F(UsageRecordTest, OddDetailsStayOnOneLineAndAreUtf8) {
    const UsageRecord record(Folder());
    std::wstring odd = L"a\tb\r\nc\x85\x2028"
                       L"d\u00E4\U0001F511|=%s";
    odd += static_cast<wchar_t>(0xD83D);
    EXPECT_TRUE(record.Append(kTime, L"e\nvent", odd));
    EXPECT_EQ(ReadFileContent(Current()), "2026-11-05T07:08:09Z\te vent\ta b  c  d\xC3\xA4"
                                          "\xF0\x9F\x94\x91|=%s\xEF\xBF\xBD\r\n");
}

TEST_F(UsageRecordTest, LongDetailsAreCut) {
    const UsageRecord record(Folder());
    EXPECT_TRUE(record.Append(kTime, L"event", std::wstring(100'000, L'x')));
    EXPECT_EQ(ReadFileContent(Current()),
              "2026-11-05T07:08:09Z\tevent\t" + std::string(1000, 'x') + "\r\n");
}

TEST_F(UsageRecordTest, AFullFileIsRenamedAndReplacesTheOlderOne) {
    constexpr std::uint64_t kLimit = 100;
    const UsageRecord record(Folder(), kLimit);
    for (const wchar_t* event : {L"1", L"2", L"3", L"4", L"5", L"6", L"7"}) {
        // 20 characters of time, two tabs, the event, the details and the line's end: 49 bytes.
        EXPECT_TRUE(record.Append(kTime, event, std::wstring(24, L'.')));
        for (const std::wstring& file : {Current(), Older()}) {
            EXPECT_LE(ReadFileContent(file).value_or("").size(), kLimit);
        }
    }
    const auto text = [](char event) {
        return std::string("2026-11-05T07:08:09Z\t") + event + '\t' + std::string(24, '.') + "\r\n";
    };
    EXPECT_EQ(ReadFileContent(Older()), text('5') + text('6'));
    EXPECT_EQ(ReadFileContent(Current()), text('7'));
    EXPECT_EQ(obtest::ListTree(Folder()), (Tree{L"usage.old.txt", L"usage.txt"}));
}

TEST_F(UsageRecordTest, TheLimitIsAQuarterOfAMebibyte) {
    const UsageRecord record(Folder());
    EXPECT_TRUE(record.Append(kTime, L"first", L""));
    const std::size_t line = ReadFileContent(Current())->size();
    obtest::WriteFileContent(Current(), std::string(256 * 1024 - line, 'x'));
    EXPECT_TRUE(record.Append(kTime, L"first", L""));
    EXPECT_EQ(ReadFileContent(Current())->size(), 256U * 1024);
    EXPECT_FALSE(obtest::FileExists(Older()));
    EXPECT_TRUE(record.Append(kTime, L"first", L""));
    EXPECT_EQ(ReadFileContent(Current())->size(), line);
    EXPECT_EQ(ReadFileContent(Older())->size(), 256U * 1024);
}

TEST_F(UsageRecordTest, WhileAReaderHasTheFullFileOpenNothingIsAdded) {
    const UsageRecord record(Folder(), 60);
    EXPECT_TRUE(record.Append(kTime, L"first", std::wstring(20, L'.')));
    const std::string before = *ReadFileContent(Current());
    {
        const ObLib::UniqueKernelHandle reader(CreateFileW(Current().c_str(), GENERIC_READ,
                                                           FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                           nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(reader);
        EXPECT_FALSE(record.Append(kTime, L"second", L""));
        EXPECT_EQ(ReadFileContent(Current()), before);
    }
    EXPECT_TRUE(record.Append(kTime, L"third", L""));
    EXPECT_EQ(ReadFileContent(Older()), before);
}

TEST_F(UsageRecordTest, AFileInThePlaceOfTheFolderFailsSilently) {
    root_.File(L"maker", "mine");
    EXPECT_FALSE(UsageRecord(Folder()).Append(kTime, L"event", L""));
    EXPECT_EQ(ReadFileContent(root_ / L"maker"), "mine");
}

TEST_F(UsageRecordTest, AMissingFolderTwoLevelsUpIsNotCreated) {
    EXPECT_FALSE(UsageRecord(root_ / L"a\\b\\c").Append(kTime, L"event", L""));
    EXPECT_EQ(obtest::ListTree(root_.Path()), Tree{});
}

TEST_F(UsageRecordTest, AFolderInThePlaceOfTheFileFailsSilently) {
    const std::wstring folder = root_.Folder(L"folder");
    CreateDirectoryW((folder + L"\\usage.txt").c_str(), nullptr);
    EXPECT_FALSE(UsageRecord(folder).Append(kTime, L"event", L""));
    EXPECT_EQ(obtest::ListTree(folder), Tree{L"usage.txt\\"});
}

// The lock isn't free in time, as when a process hangs that has it.
TEST_F(UsageRecordTest, AWriterThatHangsDelaysOthersByAQuarterOfASecond) {
    const UsageRecord record(Folder());
    EXPECT_TRUE(record.Append(kTime, L"first", L""));
    const obtest::ImportPatch<decltype(&WaitForSingleObject)> patch(
        "kernel32.dll", "WaitForSingleObject",
        [](HANDLE, DWORD limit) -> DWORD { return limit <= 1000 ? WAIT_TIMEOUT : WAIT_FAILED; });
    ASSERT_TRUE(patch.Ok());
    const std::string before = *ReadFileContent(Current());
    EXPECT_FALSE(record.Append(kTime, L"second", L""));
    EXPECT_EQ(ReadFileContent(Current()), before);
}

// A disk with room for ten more bytes.
decltype(&WriteFile) realWrite = nullptr;
BOOL WINAPI WriteTenBytes(HANDLE file, const void* data, DWORD, DWORD* written, OVERLAPPED* how) {
    realWrite(file, data, 10, written, how);
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(UsageRecordTest, AFullDiskLeavesNoHalfLine) {
    const UsageRecord record(Folder());
    EXPECT_TRUE(record.Append(kTime, L"first", L""));
    const std::string before = *ReadFileContent(Current());
    {
        const obtest::ImportPatch<decltype(&WriteFile)> patch("kernel32.dll", "WriteFile",
                                                              &WriteTenBytes);
        ASSERT_TRUE(patch.Ok());
        realWrite = patch.Real();
        EXPECT_FALSE(record.Append(kTime, L"second", L""));
    }
    EXPECT_EQ(ReadFileContent(Current()), before);
}

constexpr int kLines = 150;

// Also run as the other processes of the test below, which pass the folder.
TEST(UsageRecordWriter, WritesItsLines) {
    const TestFolder own;
    const wchar_t* const given = _wgetenv(L"OB_RECORD_FOLDER");
    const std::wstring folder = given ? given : own.Path();
    const UsageRecord record(folder, 8 * 1024);
    SYSTEMTIME now;
    for (int line = 0; line < kLines; ++line) {
        const std::wstring event =
            std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(line);
        GetSystemTime(&now);
        // Under load a line may be left out. Retry here, so that all lines can be counted.
        bool done = false;
        for (int attempt = 0; !done && attempt < 40; ++attempt) {
            done = record.Append(now, event, L"end");
        }
        EXPECT_TRUE(done);
    }
    EXPECT_TRUE(obtest::FileExists(folder + L"\\usage.txt"));
}

ObLib::UniqueKernelHandle StartWriter() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring command =
        L"\"" + std::wstring(path) + L"\" --gtest_filter=UsageRecordWriter.WritesItsLines";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        return {};
    }
    CloseHandle(started.hThread);
    return ObLib::UniqueKernelHandle(started.hProcess);
}

std::size_t CountWholeLines(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        const std::size_t end = text.find("\r\n", at);
        if (end == std::string::npos) return ADD_FAILURE() << "half a line at the end", count;
        const std::string line = text.substr(at, end - at);
        EXPECT_EQ(line.find('Z'), 19U) << line;
        EXPECT_TRUE(line.ends_with("\tend")) << line;
        at = end + 2;
    }
    return count;
}

// The files are small, so that the processes also rename the file while others append.
TEST(UsageRecordProcesses, ThreeAtOnceKeepWholeLinesAndTheLimit) {
    const TestFolder folder;
    SetEnvironmentVariableW(L"OB_RECORD_FOLDER", folder.Path().c_str());
    ObLib::UniqueKernelHandle writers[3];
    for (auto& writer : writers) writer = StartWriter();
    for (const auto& writer : writers) {
        ASSERT_TRUE(writer);
        ASSERT_EQ(WaitForSingleObject(writer.Get(), 45'000), WAIT_OBJECT_0);
        DWORD code = 1;
        GetExitCodeProcess(writer.Get(), &code);
        EXPECT_EQ(code, 0U);
    }
    const std::string current = *ReadFileContent(folder / L"usage.txt");
    const std::string older = *ReadFileContent(folder / L"usage.old.txt");
    EXPECT_LE(current.size(), 8U * 1024);
    EXPECT_LE(older.size(), 8U * 1024);
    // The renamed file is full: no process renamed it a second time, so no line was lost.
    EXPECT_GT(older.size(), 8U * 1024 - 60);
    EXPECT_GT(CountWholeLines(current) + CountWholeLines(older), 200U);
    EXPECT_EQ(obtest::ListTree(folder.Path()), (Tree{L"usage.old.txt", L"usage.txt"}));
}

class UserRecordTest : public testing::Test {
protected:
    UserRecordTest() {
        obtest::ClearProductRegistry();
        ObLib::UniqueCoTaskMemory<wchar_t> path;
        if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, path.Put()))) {
            maker_ = std::wstring(path.Get()) + L"\\Tavi Ren Computing";
        }
        obtest::RemoveTree(maker_);
    }
    ~UserRecordTest() override { obtest::ClearProductRegistry(); }

    std::string Record() const {
        return ReadFileContent(maker_ + L"\\Ombrix\\usage.txt").value_or("");
    }

    std::wstring maker_;
};

TEST_F(UserRecordTest, IsStoredBelowTheLocalApplicationData) {
    obarchive::RecordUsage(L"feature.cloud", L"cloud.name=Depot");
    const std::string text = Record();
    ASSERT_GT(text.size(), 21U);
    EXPECT_EQ(text.substr(20), "\tfeature.cloud\tcloud.name=Depot\r\n");
    SYSTEMTIME now;
    GetSystemTime(&now);
    EXPECT_EQ(text.substr(0, 3), std::to_string(now.wYear).substr(0, 3));
}

TEST_F(UserRecordTest, StartAndEndOfAProcessHaveItsNumber) {
    obarchive::RecordProcessUsage(L"launch");
    const std::string number = std::to_string(GetCurrentProcessId());
    EXPECT_EQ(Record().substr(20), "\tlaunch\tprocess=" + number + "\r\n");
}

TEST_F(UserRecordTest, NullTextsAreEmpty) {
    obarchive::RecordUsage(nullptr, nullptr);
    EXPECT_EQ(Record().substr(20), "\t\t\r\n");
}

TEST_F(UserRecordTest, ThePolicySwitchesItOffInEitherView) {
    for (const int view : {64, 32}) {
        obtest::ClearProductRegistry();
        obtest::SetMachinePolicy(obarchive::kNoUsageRecordPolicy, L"1", view);
        obarchive::RecordUsage(L"event", L"");
        obarchive::RecordProcessUsage(L"launch");
        EXPECT_EQ(obtest::ListTree(maker_), Tree{}) << view;
    }
    obtest::ClearProductRegistry();
    obtest::SetMachinePolicy(obarchive::kNoUsageRecordPolicy, L"0");
    obarchive::RecordUsage(L"event", L"");
    EXPECT_NE(Record(), "");
}

} // namespace

#include "OBCore/files/Wipe.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"

namespace {

using obcore::LaunchWipe;
using obcore::WipeFiles;
using obtest::PlacedWipeProgram;
using obtest::ProgramFolder;
using Items = std::vector<std::wstring>;

BOOL WINAPI RefusedStart(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD,
                         LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION) {
    SetLastError(0x123);
    return FALSE;
}

class Wipe : public testing::Test {
protected:
    void SetUp() override { obtest::ForgetTrace(); }

    static std::wstring OnlyCommandLine(const PlacedWipeProgram& program) {
        const auto runs = program.WaitForRuns(1);
        return runs.size() == 1 ? runs[0].commandLine : L"(runs: not one)";
    }
};

TEST_F(Wipe, HandsTheItemsOverInOrderAndEmptiesTheList) {
    const PlacedWipeProgram program(ProgramFolder());
    Items items = {L"C:\\b c\\2.txt", L"C:\\a\\1.txt"};
    LaunchWipe(items);
    EXPECT_TRUE(items.empty());
    EXPECT_EQ(OnlyCommandLine(program), L"\"\" /timeout:120 \"C:\\b c\\2.txt\" \"C:\\a\\1.txt\"");
    EXPECT_EQ(obtest::TraceLines(), std::vector<std::string>{"CreateProcess ObWipe success"});
}

TEST_F(Wipe, LeavesTheListAndTracesTheErrorWhenTheProgramIsRefused) {
    const PlacedWipeProgram program(ProgramFolder());
    obtest::ImportPatch<decltype(&CreateProcessW)> start("kernel32.dll", "CreateProcessW",
                                                         &RefusedStart);
    ASSERT_TRUE(start.Ok());
    Items items = {L"C:\\a.txt"};
    LaunchWipe(items);
    EXPECT_EQ(items, Items{L"C:\\a.txt"});
    EXPECT_EQ(obtest::TraceLines(),
              std::vector<std::string>{"CreateProcess ObWipe failed 0000000000000123"});
}

TEST_F(Wipe, LeavesTheListWithoutTheProgram) {
    Items items = {L"C:\\a.txt", L"C:\\b.txt"};
    LaunchWipe(items);
    EXPECT_EQ(items, (Items{L"C:\\a.txt", L"C:\\b.txt"}));
}

TEST_F(Wipe, DoesNotEscapeAQuotationMark) {
    const PlacedWipeProgram program(ProgramFolder());
    Items items = {L"C:\\a\"b.txt"};
    LaunchWipe(items);
    EXPECT_EQ(OnlyCommandLine(program), L"\"\" /timeout:120 \"C:\\a\"b.txt\"");
}

TEST_F(Wipe, DoesNotWaitForTheProgram) {
    const PlacedWipeProgram program(ProgramFolder());
    const ObLib::UniqueKernelHandle hold(
        CreateEventW(nullptr, TRUE, FALSE, obtest::kWipeHoldEventName));
    ASSERT_TRUE(hold);
    Items items = {L"C:\\a.txt"};
    LaunchWipe(items);
    EXPECT_TRUE(items.empty());
    EXPECT_TRUE(program.Runs().empty());
    SetEvent(hold.Get());
    EXPECT_EQ(program.WaitForRuns(1).size(), 1u);
}

TEST_F(Wipe, HandsFilesOverBeforeFoldersAndEmptiesBothLists) {
    const PlacedWipeProgram program(ProgramFolder());
    Items files = {L"C:\\t\\1.txt", L"C:\\t\\2.txt"};
    Items folders = {L"C:\\t\\"};
    WipeFiles(files, folders);
    EXPECT_TRUE(files.empty());
    EXPECT_TRUE(folders.empty());
    EXPECT_EQ(OnlyCommandLine(program),
              L"\"\" /timeout:120 \"C:\\t\\1.txt\" \"C:\\t\\2.txt\" \"C:\\t\\\"");
}

TEST_F(Wipe, LeavesBothListsWithoutTheProgram) {
    Items files = {L"C:\\t\\1.txt"};
    Items folders = {L"C:\\t\\"};
    WipeFiles(files, folders);
    EXPECT_EQ(files, Items{L"C:\\t\\1.txt"});
    EXPECT_EQ(folders, Items{L"C:\\t\\"});
}

} // namespace

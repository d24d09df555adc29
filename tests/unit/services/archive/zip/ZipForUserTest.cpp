#include "services/archive/zip/ZipForUser.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/ui/ProgressWindowIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProgressUiDriver.h"
#include "tests/support/TestFolder.h"

namespace {

using obarchive::ProgressCallback;
using obarchive::RunWithProgress;
using obarchive::ZipForUser;
using obarchive::ZipJob;
using obarchive::ZipResult;
using obtest::FindProgressWindow;
using obtest::ItemText;
using obtest::ProgressUiDriver;
using obtest::TestFolder;
using obtest::WaitUntil;

using Tree = std::vector<std::wstring>;

// The clock that the test turns, and how often it was looked at.
std::atomic<std::uint64_t> clockTime;
std::atomic<int> clockLooks;
std::uint64_t TestClock() {
    ++clockLooks;
    return clockTime;
}

bool LooksAgain(int times) {
    const int before = clockLooks;
    return WaitUntil([=] { return clockLooks >= before + times; });
}

class RunWithProgressTest : public testing::Test {
protected:
    RunWithProgressTest()
        : owner_(CreateWindowW(L"Static", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300,
                               200, nullptr, nullptr, nullptr, nullptr)) {
        clockTime = 1000;
        clockLooks = 0;
    }

    ZipResult Run(const obarchive::ZipWork& work) {
        const ZipResult result = RunWithProgress(owner_.Get(), work, &TestClock);
        EXPECT_FALSE(FindProgressWindow());
        EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
        return result;
    }

    // Reads on until the person cancels, as a long run does.
    static ZipResult ReadUntilCancelled(const ProgressCallback& progress) {
        clockTime = 1500;
        const std::wstring file = L"C:\\folder\\notes.txt";
        const bool heard = WaitUntil([&] { return !progress({file, 40, 100}); });
        return heard ? ZipResult::Cancelled : ZipResult::Ok;
    }

    // The person does this to the window, and the run must end as cancelled.
    void ExpectCancelBy(const std::function<void(HWND)>& act) {
        ProgressUiDriver driver(act);
        EXPECT_EQ(Run(&ReadUntilCancelled), ZipResult::Cancelled);
        EXPECT_TRUE(driver.SawWindow());
    }

    ObLib::UniqueWindow owner_;
};

TEST_F(RunWithProgressTest, TheWindowAppearsAfterHalfASecondAndNotBefore) {
    const DWORD caller = GetCurrentThreadId();
    const auto work = [&](const ProgressCallback&) {
        EXPECT_NE(GetCurrentThreadId(), caller);
        clockTime = 1499;
        EXPECT_TRUE(LooksAgain(3));
        EXPECT_FALSE(FindProgressWindow());
        EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
        clockTime = 1500;
        EXPECT_TRUE(WaitUntil([] { return FindProgressWindow() != nullptr; }));
        EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
        return ZipResult::DiskFull;
    };
    EXPECT_EQ(Run(work), ZipResult::DiskFull);
}

TEST_F(RunWithProgressTest, AShortRunShowsNothingAndKeepsItsResult) {
    for (const ZipResult expected : {ZipResult::Ok, ZipResult::SourceLocked}) {
        EXPECT_EQ(Run([=](const ProgressCallback& progress) {
                      EXPECT_TRUE(progress({L"a", 1, 2}));
                      return expected;
                  }),
                  expected);
    }
}

TEST_F(RunWithProgressTest, TheButtonCancels) {
    ExpectCancelBy([](HWND window) { PostMessageW(GetDlgItem(window, IDCANCEL), BM_CLICK, 0, 0); });
}

TEST_F(RunWithProgressTest, EscapeCancels) {
    ExpectCancelBy(
        [](HWND window) { PostMessageW(GetDlgItem(window, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 0); });
}

TEST_F(RunWithProgressTest, TheCloseBoxCancels) {
    ExpectCancelBy([](HWND window) { PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0); });
}

TEST_F(RunWithProgressTest, TheEndOfTheOwnerCancels) {
    const HWND owner = owner_.Release();
    ProgressUiDriver driver([=](HWND) { PostMessageW(owner, WM_CLOSE, 0, 0); });
    EXPECT_EQ(RunWithProgress(owner, &ReadUntilCancelled, &TestClock), ZipResult::Cancelled);
    EXPECT_TRUE(driver.SawWindow());
    EXPECT_FALSE(IsWindow(owner));
}

TEST_F(RunWithProgressTest, AQuitMessageCancelsAndIsPutBack) {
    const DWORD caller = GetCurrentThreadId();
    ExpectCancelBy([=](HWND) { PostThreadMessageW(caller, WM_QUIT, 77, 0); });
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 77U);
}

TEST_F(RunWithProgressTest, AQuitMessageOfAShortRunStaysInTheQueue) {
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 78, 0);
    EXPECT_EQ(Run([](const ProgressCallback&) {
                  EXPECT_TRUE(LooksAgain(3));
                  return ZipResult::Ok;
              }),
              ZipResult::Ok);
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 78U);
}

TEST_F(RunWithProgressTest, MessagesOfOtherThreadsAreAnsweredFromTheStartOn) {
    const auto answers = [this] {
        DWORD_PTR answer = 0;
        return SendMessageTimeoutW(owner_.Get(), WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, 5000,
                                   &answer) != 0 &&
               answer == 5;
    };
    EXPECT_EQ(Run([&](const ProgressCallback&) {
                  EXPECT_TRUE(answers());
                  clockTime = 1500;
                  EXPECT_TRUE(WaitUntil([] { return FindProgressWindow() != nullptr; }));
                  EXPECT_TRUE(answers());
                  return ZipResult::Ok;
              }),
              ZipResult::Ok);
}

TEST_F(RunWithProgressTest, ShowsWhatTheRunReportsAndThatItEnds) {
    const std::wstring first = L"C:\\folder\\first.txt";
    const std::wstring last = L"C:\\folder\\last.txt";
    EXPECT_EQ(Run([&](const ProgressCallback& progress) {
                  EXPECT_TRUE(progress({first, 0, 4000}));
                  clockTime = 1600;
                  HWND window = nullptr;
                  EXPECT_TRUE(
                      WaitUntil([&] { return (window = FindProgressWindow()) != nullptr; }));
                  const auto shows = [&](int id, const std::wstring& text) {
                      return WaitUntil([&] { return ItemText(window, id) == text; });
                  };
                  EXPECT_TRUE(shows(OB_PROGRESS_FILE, first));
                  EXPECT_EQ(ItemText(window, OB_PROGRESS_TIME_LEFT), L"");
                  EXPECT_TRUE(progress({first, 1000, 4000}));
                  clockTime = 11'000;
                  EXPECT_TRUE(shows(OB_PROGRESS_TIME_LEFT, L"About 30 seconds left"));
                  EXPECT_TRUE(progress({last, 4000, 4000}));
                  EXPECT_TRUE(shows(OB_PROGRESS_FILE, last));
                  EXPECT_TRUE(shows(OB_PROGRESS_TIME_LEFT, L"Finishing"));
                  return ZipResult::Ok;
              }),
              ZipResult::Ok);
}

TEST_F(RunWithProgressTest, ExceptionsOfTheWorkAreResults) {
    EXPECT_EQ(Run([](const ProgressCallback&) -> ZipResult { throw std::runtime_error("x"); }),
              ZipResult::Unexpected);
    EXPECT_EQ(Run([](const ProgressCallback&) -> ZipResult {
                  clockTime = 1500;
                  EXPECT_TRUE(WaitUntil([] { return FindProgressWindow() != nullptr; }));
                  throw std::bad_alloc();
              }),
              ZipResult::OutOfMemory);
}

TEST_F(RunWithProgressTest, ACancelCountsWhateverTheWorkAnswers) {
    for (const ZipResult late : {ZipResult::Ok, ZipResult::DiskFull}) {
        clockTime = 1000;
        ProgressUiDriver driver([](HWND window) { SendMessageW(window, WM_COMMAND, IDCANCEL, 0); });
        EXPECT_EQ(Run([late](const ProgressCallback& progress) {
                      ReadUntilCancelled(progress);
                      return late;
                  }),
                  ZipResult::Cancelled);
    }
}

std::atomic<int> brokenReads;
BOOL WINAPI NoteBrokenRead(HANDLE) {
    ++brokenReads;
    return TRUE;
}

TEST_F(RunWithProgressTest, TheWindowLivesWhileAReadBlocksAndACancelBreaksThatOffOnce) {
    brokenReads = 0;
    const obtest::ImportPatch<decltype(&CancelSynchronousIo)> patch(
        "kernel32.dll", "CancelSynchronousIo", &NoteBrokenRead);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Run([](const ProgressCallback&) {
                  clockTime = 2000;
                  HWND window = nullptr;
                  EXPECT_TRUE(
                      WaitUntil([&] { return (window = FindProgressWindow()) != nullptr; }));
                  // The thread of the work is in here, and the window answers it.
                  SendMessageW(window, WM_COMMAND, IDCANCEL, 0);
                  EXPECT_TRUE(WaitUntil(
                      [&] { return ItemText(window, OB_PROGRESS_TIME_LEFT) == L"Cancelling"; }));
                  clockTime = 2999;
                  EXPECT_TRUE(LooksAgain(3));
                  EXPECT_EQ(brokenReads, 0);
                  clockTime = 3001;
                  EXPECT_TRUE(WaitUntil([] { return brokenReads == 1; }));
                  clockTime = 9000;
                  EXPECT_TRUE(LooksAgain(3));
                  EXPECT_EQ(brokenReads, 1);
                  return ZipResult::SourceUnreadable;
              }),
              ZipResult::Cancelled);
}

TEST_F(RunWithProgressTest, ARunThatHasHeardTheCancelIsLeftToCleanUp) {
    brokenReads = 0;
    const obtest::ImportPatch<decltype(&CancelSynchronousIo)> patch(
        "kernel32.dll", "CancelSynchronousIo", &NoteBrokenRead);
    ASSERT_TRUE(patch.Ok());
    ProgressUiDriver driver([](HWND window) { SendMessageW(window, WM_COMMAND, IDCANCEL, 0); });
    EXPECT_EQ(Run([](const ProgressCallback& progress) {
                  ReadUntilCancelled(progress);
                  clockTime = 90'000;
                  EXPECT_TRUE(LooksAgain(3));
                  EXPECT_EQ(brokenReads, 0);
                  return ZipResult::Cancelled;
              }),
              ZipResult::Cancelled);
}

HANDLE WINAPI NoThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
    return nullptr;
}

TEST_F(RunWithProgressTest, WithoutAThreadTheWorkIsDoneWithoutAWindow) {
    const obtest::ImportPatch<decltype(&CreateThread)> patch("kernel32.dll", "CreateThread",
                                                             &NoThread);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Run([](const ProgressCallback& progress) {
                  EXPECT_FALSE(progress);
                  return ZipResult::DiskFull;
              }),
              ZipResult::DiskFull);
}

HWND WINAPI NoDialog(HINSTANCE, const wchar_t*, HWND, DLGPROC, LPARAM) { return nullptr; }

TEST_F(RunWithProgressTest, WithoutAWindowTheRunEndsAllTheSame) {
    const obtest::ImportPatch<decltype(&CreateDialogParamW)> patch("user32.dll",
                                                                   "CreateDialogParamW", &NoDialog);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Run([](const ProgressCallback& progress) {
                  clockTime = 2000;
                  EXPECT_TRUE(LooksAgain(4));
                  EXPECT_TRUE(progress({L"a", 1, 2}));
                  return ZipResult::Ok;
              }),
              ZipResult::Ok);
}

// The real run with the real window.
decltype(&ReadFile) realRead = nullptr;
decltype(&MoveFileExW) realMove = nullptr;
std::atomic<bool> mayGoOn;

BOOL WINAPI ReadWhenTold(HANDLE file, void* data, DWORD size, DWORD* read, OVERLAPPED* how) {
    EXPECT_TRUE(WaitUntil([] { return mayGoOn.load(); }));
    return realRead(file, data, size, read, how);
}

BOOL WINAPI MoveWhenTold(const wchar_t* from, const wchar_t* to, DWORD flags) {
    EXPECT_TRUE(WaitUntil([] { return mayGoOn.load(); }));
    return realMove(from, to, flags);
}

class ZipForUserTest : public testing::Test {
protected:
    ZipForUserTest() {
        job_.target = out_ / L"result.zip";
        for (const wchar_t* name : {L"a.txt", L"b.txt"}) {
            job_.files.push_back(in_.File(name, std::string(300'000, 'x')));
        }
        mayGoOn = false;
    }

    static void CancelAndGoOn(HWND window) {
        SendMessageW(window, WM_COMMAND, IDCANCEL, 0);
        mayGoOn = true;
    }

    TestFolder in_;
    TestFolder out_;
    ZipJob job_;
    obtest::MessageBoxWatcher boxes_;
};

TEST_F(ZipForUserTest, AFinishedZipShowsNoMessage) {
    EXPECT_EQ(ZipForUser(nullptr, job_), ZipResult::Ok);
    EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{L"result.zip"});
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(ZipForUserTest, ACancelWhileItReadsLeavesNothingAndShowsNoMessage) {
    const obtest::ImportPatch<decltype(&ReadFile)> patch("kernel32.dll", "ReadFile", &ReadWhenTold);
    ASSERT_TRUE(patch.Ok());
    realRead = patch.Real();
    ProgressUiDriver driver(&CancelAndGoOn);
    EXPECT_EQ(ZipForUser(nullptr, job_), ZipResult::Cancelled);
    EXPECT_TRUE(driver.SawWindow());
    EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
    EXPECT_EQ(obtest::ListTree(in_.Path()), (Tree{L"a.txt", L"b.txt"}));
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(ZipForUserTest, ACancelAtTheLastMomentTakesTheZipAway) {
    const obtest::ImportPatch<decltype(&MoveFileExW)> patch("kernel32.dll", "MoveFileExW",
                                                            &MoveWhenTold);
    ASSERT_TRUE(patch.Ok());
    realMove = patch.Real();
    ProgressUiDriver driver(&CancelAndGoOn);
    EXPECT_EQ(ZipForUser(nullptr, job_), ZipResult::Cancelled);
    EXPECT_TRUE(driver.SawWindow());
    EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(ZipForUserTest, AFailureIsShownInOneSentenceWithItsFile) {
    DeleteFileW(job_.files[1].c_str());
    EXPECT_EQ(ZipForUser(nullptr, job_), ZipResult::SourceMissing);
    ASSERT_EQ(boxes_.Seen().size(), 1U);
    EXPECT_TRUE(boxes_.Seen()[0].text.starts_with(L"\u201Cb.txt\u201D is no longer there."));
    EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
}

BOOL WINAPI WriteToFullDisk(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
    if (written) *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

// The file that another program writes to while it is read.
std::wstring changing;
BOOL WINAPI ReadAndChange(HANDLE file, void* data, DWORD size, DWORD* read, OVERLAPPED* how) {
    const ObLib::UniqueKernelHandle writer(CreateFileW(changing.c_str(), FILE_APPEND_DATA,
                                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                       OPEN_EXISTING, 0, nullptr));
    DWORD written = 0;
    WriteFile(writer.Get(), "y", 1, &written, nullptr);
    return realRead(file, data, size, read, how);
}

class FailureForUser : public ZipForUserTest {
protected:
    void ExpectTold(ZipResult result, const std::wstring& sentence) {
        EXPECT_EQ(ZipForUser(nullptr, job_), result);
        ASSERT_EQ(boxes_.Seen().size(), 1U);
        EXPECT_EQ(boxes_.Seen()[0].text, sentence);
        EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
    }
};

TEST_F(FailureForUser, ALockedSource) {
    const ObLib::UniqueKernelHandle lock(
        CreateFileW(job_.files[1].c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ExpectTold(
        ZipResult::SourceLocked,
        L"\u201Cb.txt\u201D is open in another program that doesn't let it be read. Close it "
        L"there and try again.");
}

TEST_F(FailureForUser, AVanishedSource) {
    DeleteFileW(job_.files[1].c_str());
    ExpectTold(
        ZipResult::SourceMissing,
        L"\u201Cb.txt\u201D is no longer there. It may have been moved, renamed or deleted, or "
        L"its drive may not be connected.");
}

TEST_F(FailureForUser, ASourceThatIsChangedMeanwhile) {
    const obtest::ImportPatch<decltype(&ReadFile)> patch("kernel32.dll", "ReadFile",
                                                         &ReadAndChange);
    ASSERT_TRUE(patch.Ok());
    realRead = patch.Real();
    changing = job_.files[0];
    ExpectTold(
        ZipResult::SourceChanged,
        L"\u201Ca.txt\u201D was changed while it was being read. Wait until the other program "
        L"has finished with it and try again.");
}

TEST_F(FailureForUser, APathThatNoSystemTakes) {
    std::wstring path = in_.Path();
    while (path.size() < 32'767) path += L"\\folder";
    job_.files.push_back(path + L"\\c.txt");
    ExpectTold(ZipResult::PathTooLong,
               L"\u201Cc.txt\u201D has a longer name or path than the system "
               L"can take. Shorten it and try again.");
}

TEST_F(FailureForUser, AZipWithANameThatNoSystemTakes) {
    job_.target = out_ / (std::wstring(252, L'z') + L".zip");
    ExpectTold(ZipResult::PathTooLong, L"\u201C" + std::wstring(50, L'z') + L'\u2026' +
                                           std::wstring(25, L'z') +
                                           L".zip\u201D has a longer name or path than the system "
                                           L"can take. Shorten it and try again.");
}

TEST_F(FailureForUser, AFullDisk) {
    const obtest::ImportPatch<decltype(&WriteFile)> patch("kernel32.dll", "WriteFile",
                                                          &WriteToFullDisk);
    ASSERT_TRUE(patch.Ok());
    ExpectTold(ZipResult::DiskFull, L"There is not enough free space on the drive for temporary "
                                    L"files to make the zip.");
}

TEST_F(FailureForUser, AMissingFolder) {
    job_.target = out_ / L"missing\\result.zip";
    ExpectTold(ZipResult::TargetUnwritable,
               L"The zip could not be written to the folder for temporary files. The folder may be "
               L"missing or protected.");
}

TEST_F(ZipForUserTest, ARefusalBeforeTheRunIsShownToo) {
    EXPECT_EQ(obarchive::RefuseForUser(nullptr, ZipResult::BadContext), ZipResult::BadContext);
    ASSERT_EQ(boxes_.Seen().size(), 1U);
    EXPECT_NE(boxes_.Seen()[0].text.find(L"(error 1)"), std::wstring::npos);
}

} // namespace

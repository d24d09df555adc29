// An upload under its progress window, operated as a user does.
#include "services/providers/storage/UploadRun.h"

#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/UploadDialogIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/storage/ScriptedUpload.h"

using namespace providers;
using obtest::ItemText;
using obtest::ScriptedUpload;

namespace {

constexpr UINT kDestroyYourself = WM_APP + 1;
constexpr UINT kCount = WM_APP + 2;

std::atomic<int> counted;

LRESULT CALLBACK OwnerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kDestroyYourself) return DestroyWindow(window);
    if (message == kCount) return ++counted;
    return DefWindowProcW(window, message, wParam, lParam);
}

// The run's clock, read on its own thread alone; each reading is a step later.
std::atomic<std::uint64_t> clockNow;
std::atomic<std::uint64_t> clockStep;
std::uint64_t Clock() { return clockNow += clockStep; }

// As when there is no memory for what is shown.
std::atomic<int> readings;
std::uint64_t FailingClock() {
    if (++readings > 1) throw std::bad_alloc();
    return 0;
}

HWND ProgressWindow() {
    return obtest::FindTopWindow(
        [](HWND window) { return GetDlgItem(window, OB_UPLOAD_BAR) != nullptr; },
        GetCurrentProcessId());
}

bool WaitForSet(HANDLE event) {
    return WaitForSingleObject(event, obtest::kUiLimit) == WAIT_OBJECT_0;
}

class UploadRun : public testing::Test {
protected:
    UploadRun() {
        WNDCLASSW owner{};
        owner.lpfnWndProc = &OwnerProc;
        owner.hInstance = GetModuleHandleW(nullptr);
        owner.lpszClassName = L"UploadRunOwner";
        RegisterClassW(&owner);
        owner_ = ObLib::UniqueWindow(
            CreateWindowExW(0, owner.lpszClassName, L"Owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0,
                            0, 300, 200, nullptr, nullptr, owner.hInstance, nullptr));
        field_ = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 0, 100, 20,
                                 owner_.Get(), nullptr, owner.hInstance, nullptr);
        SetFocus(field_);
        counted = 0;
        clockNow = 0;
        clockStep = 1000; // the window comes at the second look
    }
    ~UploadRun() override {
        if (!IsWindow(owner_.Get())) static_cast<void>(owner_.Release());
    }

    UploadResult Run(const ScriptedUpload::Script& script) { return Run(script, owner_.Get()); }
    UploadResult Run(const ScriptedUpload::Script& script, HWND owner) {
        ScriptedUpload provider(script);
        return RunUploadInWindow(provider, L"key", {L"C:\\run\\Files.zip", L"Files.zip", L"Sent"},
                                 {L"A title", L"A body."}, owner, ended_.Get(), &Clock);
    }

    // An upload that waits for its cancel, while `act` runs on its thread once the window is open.
    static ScriptedUpload::Script Cancelled(const std::function<void(HWND)>& act,
                                            UploadResult result = {}) {
        return [act, result](auto&, auto&, UploadProgress& progress) {
            EXPECT_TRUE(obtest::WaitUntil([] { return ProgressWindow() != nullptr; }));
            act(ProgressWindow());
            EXPECT_TRUE(WaitForSet(progress.Cancelled()));
            return result;
        };
    }
    UploadEnd EndAfter(const std::function<void(HWND)>& act) { return Run(Cancelled(act)).end; }

    ObLib::UniqueWindow owner_;
    HWND field_ = nullptr;
    ObLib::UniqueKernelHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(UploadRun, GivesTheProviderItsFileAndReturnsItsResult) {
    const UploadResult stored = Run([](auto& key, const UploadFile& file, auto&) -> UploadResult {
        EXPECT_EQ(key, L"key");
        EXPECT_EQ(file.localPath, L"C:\\run\\Files.zip");
        EXPECT_EQ(file.folder, L"Sent");
        return {UploadEnd::Done, {L"path", file.name, L"version", 7}, {}};
    });
    EXPECT_EQ(stored.end, UploadEnd::Done);
    EXPECT_EQ(stored.stored.path, L"path");
    EXPECT_EQ(stored.stored.name, L"Files.zip");
    EXPECT_EQ(stored.stored.version, L"version");
    EXPECT_EQ(stored.stored.size, 7U);
    const UploadResult failed = Run([](auto&, auto&, auto&) -> UploadResult {
        return {UploadEnd::Failed, {}, L"Why."};
    });
    EXPECT_EQ(failed.end, UploadEnd::Failed);
    EXPECT_EQ(failed.sentence, L"Why.");
    EXPECT_EQ(Run([](auto&, auto&, auto&) -> UploadResult {
                  return {UploadEnd::NameTaken, {}, {}};
              }).end,
              UploadEnd::NameTaken);
}

TEST_F(UploadRun, ShowsNoWindowWhenTheUploadIsShort) {
    clockStep = 1;
    Run([](auto&, auto&, auto&) -> UploadResult {
        EXPECT_TRUE(obtest::WaitUntil([] { return clockNow > 5; }));
        EXPECT_EQ(ProgressWindow(), nullptr);
        return {};
    });
}

TEST_F(UploadRun, ShowsTheTextsThatItWasGivenAndTheName) {
    EndAfter([](HWND window) {
        EXPECT_EQ(obtest::TextOf(window), L"A title");
        EXPECT_EQ(ItemText(window, OB_UPLOAD_BODY), L"A body.");
        EXPECT_EQ(ItemText(window, OB_UPLOAD_FILE), L"Files.zip");
        obtest::Click(GetDlgItem(window, IDCANCEL));
    });
}

// The screen reader takes the text before a bar as the bar's name.
TEST_F(UploadRun, TheNameOfTheFileComesBeforeTheBar) {
    EndAfter([](HWND window) {
        EXPECT_EQ(GetWindow(GetDlgItem(window, OB_UPLOAD_BAR), GW_HWNDPREV),
                  GetDlgItem(window, OB_UPLOAD_FILE));
        GUITHREADINFO info{sizeof info};
        EXPECT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info));
        EXPECT_EQ(info.hwndFocus, GetDlgItem(window, IDCANCEL));
        obtest::Click(GetDlgItem(window, IDCANCEL));
    });
}

TEST_F(UploadRun, ShowsBarSpeedAndTimeLeft) {
    const auto shows = [](const wchar_t* speed, const wchar_t* time) {
        return obtest::WaitUntil([=] {
            return ItemText(ProgressWindow(), OB_UPLOAD_SPEED).find(speed) != std::wstring::npos &&
                   ItemText(ProgressWindow(), OB_UPLOAD_TIME_LEFT).find(time) != std::wstring::npos;
        });
    };
    Run([&](auto&, auto&, UploadProgress& progress) -> UploadResult {
        constexpr std::uint64_t kTotal = 64 << 20;
        EXPECT_TRUE(obtest::WaitUntil([] { return ProgressWindow() != nullptr; }));
        const HWND bar = GetDlgItem(ProgressWindow(), OB_UPLOAD_BAR);
        progress.Show(kTotal / 4, kTotal);
        EXPECT_TRUE(shows(L"16.0 MB of 64.0 MB, ", L" left"));
        EXPECT_TRUE(shows(L" a second", L"About "));
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 250);
        progress.Show(kTotal / 8, kTotal); // sent again
        EXPECT_TRUE(shows(L"8.00 MB of 64.0 MB", L""));
        EXPECT_TRUE(obtest::WaitUntil([=] { return SendMessageW(bar, PBM_GETPOS, 0, 0) == 125; }));
        progress.Show(kTotal, kTotal);
        EXPECT_TRUE(shows(L"64.0 MB of 64.0 MB", L"Finishing"));
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 1000);
        return {};
    });
}

TEST_F(UploadRun, EndsAtTheCancelButtonEscAndTheCloseBox) {
    EXPECT_EQ(EndAfter([](HWND window) { obtest::Click(GetDlgItem(window, IDCANCEL)); }),
              UploadEnd::Cancelled);
    EXPECT_EQ(EndAfter([](HWND window) {
                  PostMessageW(GetDlgItem(window, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 1);
              }),
              UploadEnd::Cancelled);
    EXPECT_EQ(EndAfter([](HWND window) { PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0); }),
              UploadEnd::Cancelled);
}

TEST_F(UploadRun, ShowsThatItIsCancelling) {
    Run([](auto&, auto&, UploadProgress& progress) -> UploadResult {
        EXPECT_TRUE(obtest::WaitUntil([] { return ProgressWindow() != nullptr; }));
        const HWND window = ProgressWindow();
        obtest::Click(GetDlgItem(window, IDCANCEL));
        EXPECT_TRUE(WaitForSet(progress.Cancelled()));
        EXPECT_TRUE(obtest::WaitUntil(
            [=] { return ItemText(window, OB_UPLOAD_TIME_LEFT) == L"Cancelling"; }));
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(window, IDCANCEL)));
        return {};
    });
    EXPECT_EQ(ProgressWindow(), nullptr);
}

TEST_F(UploadRun, EndsWithTheSession) {
    EXPECT_EQ(EndAfter([&](HWND) { SetEvent(ended_.Get()); }), UploadEnd::Cancelled);
}

TEST_F(UploadRun, EndsWithItsOwner) {
    EXPECT_EQ(EndAfter([&](HWND) { PostMessageW(owner_.Get(), kDestroyYourself, 0, 0); }),
              UploadEnd::Cancelled);
}

TEST_F(UploadRun, DoesNotBeginForAnOwnerThatIsGone) {
    bool hasBegun = false;
    const auto result = Run(
        [&](auto&, auto&, auto&) -> UploadResult {
            hasBegun = true;
            return {};
        },
        reinterpret_cast<HWND>(0xDEAD));
    EXPECT_EQ(result.end, UploadEnd::Cancelled);
    EXPECT_FALSE(hasBegun);
}

TEST_F(UploadRun, EndsWhenTheThreadIsToQuitAndPostsThatAgain) {
    const DWORD thread = GetCurrentThreadId();
    EXPECT_EQ(EndAfter([&](HWND) { PostThreadMessageW(thread, WM_QUIT, 42, 0); }),
              UploadEnd::Cancelled);
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42U);
}

// What is stored isn't reported as cancelled, or nobody would know of it.
TEST_F(UploadRun, AFileThatWasStoredDespiteACancelIsDone) {
    const auto cancel = [](HWND window) { obtest::Click(GetDlgItem(window, IDCANCEL)); };
    EXPECT_EQ(Run(Cancelled(cancel, {UploadEnd::Done, {}, {}})).end, UploadEnd::Done);
    EXPECT_EQ(Run(Cancelled(cancel, {UploadEnd::NameTaken, {}, {}})).end, UploadEnd::Cancelled);
    const UploadResult failed = Run(Cancelled(cancel, {UploadEnd::Failed, {}, L"Why."}));
    EXPECT_EQ(failed.end, UploadEnd::Cancelled);
    EXPECT_EQ(failed.sentence, L"");
}

TEST_F(UploadRun, AProviderThatThrowsHasFailed) {
    const auto result =
        Run([](auto&, auto&, auto&) -> UploadResult { throw std::runtime_error("no"); });
    EXPECT_EQ(result.end, UploadEnd::Failed);
    EXPECT_EQ(result.sentence, L"");
}

TEST_F(UploadRun, IsDoneWhenTheFileWasStoredAlthoughNothingCouldBeShown) {
    for (const UploadEnd end : {UploadEnd::Done, UploadEnd::Cancelled}) {
        readings = 0;
        ScriptedUpload provider([&](auto&, auto&, UploadProgress& progress) {
            EXPECT_TRUE(WaitForSet(progress.Cancelled()));
            return UploadResult{end, {L"/a.zip", L"a.zip", L"1", 1}, {}};
        });
        const UploadResult result =
            RunUploadInWindow(provider, L"key", {L"C:\\a", L"a.zip", L""}, {L"A title", L"A body."},
                              owner_.Get(), ended_.Get(), &FailingClock);
        EXPECT_EQ(result.end, end == UploadEnd::Done ? UploadEnd::Done : UploadEnd::Failed);
        EXPECT_EQ(result.stored.path, end == UploadEnd::Done ? L"/a.zip" : L"");
        EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
    }
}

TEST_F(UploadRun, DisablesItsOwnerAndGivesTheFocusBack) {
    ASSERT_EQ(GetFocus(), field_);
    EndAfter([&](HWND window) {
        EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
        EXPECT_EQ(GetWindow(window, GW_OWNER), owner_.Get());
        obtest::Click(GetDlgItem(window, IDCANCEL));
    });
    EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
    EXPECT_EQ(GetFocus(), field_);
    EXPECT_EQ(GetActiveWindow(), owner_.Get());
}

TEST_F(UploadRun, LeavesAnOwnerDisabledThatWasDisabledBefore) {
    EnableWindow(owner_.Get(), FALSE);
    EndAfter([](HWND window) { obtest::Click(GetDlgItem(window, IDCANCEL)); });
    EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
}

TEST_F(UploadRun, DisablesTheWholeWindowOfAControl) {
    Run(
        [&](auto&, auto&, UploadProgress&) -> UploadResult {
            EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
            return {};
        },
        field_);
    EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
}

TEST_F(UploadRun, NeedsNoOwner) {
    EXPECT_EQ(
        Run(Cancelled([](HWND window) { obtest::Click(GetDlgItem(window, IDCANCEL)); }), nullptr)
            .end,
        UploadEnd::Cancelled);
}

TEST_F(UploadRun, DispatchesTheMessagesOfItsThread) {
    clockStep = 1; // before there is a window, too
    Run([&](auto&, auto&, auto&) -> UploadResult {
        PostMessageW(owner_.Get(), kCount, 0, 0);
        EXPECT_TRUE(obtest::WaitUntil([] { return counted == 1; }));
        SendMessageW(owner_.Get(), kCount, 0, 0);
        EXPECT_EQ(counted, 2);
        return {};
    });
}

TEST_F(UploadRun, AsksOnTheThreadOfTheWindowWithTheWindowAsOwner) {
    clockStep = 1; // the question opens the window
    const DWORD thread = GetCurrentThreadId();
    Run([&](auto&, auto&, UploadProgress& progress) -> UploadResult {
        int asked = 0;
        for (int time = 0; time < 2; ++time) {
            EXPECT_TRUE(progress.Ask([&](HWND owner) {
                ++asked;
                EXPECT_EQ(GetCurrentThreadId(), thread);
                EXPECT_EQ(owner, ProgressWindow());
                EXPECT_NE(owner, nullptr);
            }));
        }
        EXPECT_EQ(asked, 2);
        return {};
    });
}

TEST_F(UploadRun, AsksNothingAfterACancel) {
    Run([&](auto&, auto&, UploadProgress& progress) -> UploadResult {
        SetEvent(ended_.Get());
        EXPECT_TRUE(WaitForSet(progress.Cancelled()));
        EXPECT_FALSE(progress.Ask([](HWND) { ADD_FAILURE() << "asked"; }));
        return {};
    });
}

TEST_F(UploadRun, AnExceptionInAQuestionReachesTheProvider) {
    Run([&](auto&, auto&, UploadProgress& progress) -> UploadResult {
        EXPECT_THROW(progress.Ask([](HWND) { throw std::runtime_error("no"); }),
                     std::runtime_error);
        return {};
    });
}

TEST_F(UploadRun, TheEndOfTheSessionClosesAQuestion) {
    EXPECT_EQ(Run([&](auto&, auto&, UploadProgress& progress) -> UploadResult {
                  int answer = 0;
                  EXPECT_TRUE(progress.Ask([&](HWND owner) {
                      SetEvent(ended_.Get());
                      answer = MessageBoxW(owner, L"A question?", L"Caption", MB_OKCANCEL);
                  }));
                  EXPECT_EQ(answer, IDCANCEL);
                  EXPECT_TRUE(WaitForSet(progress.Cancelled()));
                  return {};
              }).end,
              UploadEnd::Cancelled);
}

HWND WINAPI NoWindow(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM) { return nullptr; }

// There is neither an owner nor memory for a window.
TEST_F(UploadRun, TheEndOfTheSessionClosesAQuestionWithoutAnOwner) {
    const obtest::ImportPatch patch("user32.dll", "CreateDialogParamW", &NoWindow);
    ASSERT_TRUE(patch.Ok());
    int answer = 0;
    Run(
        [&](auto&, auto&, UploadProgress& progress) -> UploadResult {
            EXPECT_TRUE(progress.Ask([&](HWND owner) {
                EXPECT_EQ(owner, nullptr);
                SetEvent(ended_.Get());
                answer = MessageBoxW(owner, L"A question?", L"Caption", MB_OKCANCEL);
            }));
            return {};
        },
        nullptr);
    EXPECT_EQ(answer, IDCANCEL);
}

} // namespace

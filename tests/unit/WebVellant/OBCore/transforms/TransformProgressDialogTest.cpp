// The progress dialog: its messages, the user's cancel at any moment, and what its end does to the
// worker.
#include <commctrl.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "tests/support/Allocations.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::FailingCall;
using obtest::FakeModules;
using obtest::Fault;
using obtest::HeldCall;
using obtest::Lines;
using obtest::TransformUiDriver;

constexpr wchar_t kCancelled[] = L"EndDialog(dialog, 2) [dialog]";
constexpr char kNoThread[] = "Create thread DoTransformsProgress failed";

void PressCancel(HWND dialog) { SendMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0); }

bool WaitUntilClosed(HWND dialog) {
    return obtest::WaitUntil([dialog] { return !IsWindow(dialog); });
}

// The window of the dialog's thread that has the keyboard.
HWND FocusOf(HWND dialog) {
    GUITHREADINFO thread{sizeof thread};
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &thread);
    return thread.hwndFocus;
}

// The dialog procedure itself: SendMessage gives the result of the system's handling, which follows
// when the procedure returns 0.
DLGPROC ProcedureOf(HWND dialog) {
    return reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
}

// Set by FailAfterwards; while it exists, the next allocation of the process fails.
std::optional<obtest::FailingAllocations> failing;

// A hook: memory runs out for what the dialog's thread does for the final stage. The other hooks
// of that thread come first.
LRESULT CALLBACK FailAfterwards(int code, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = CallNextHookEx(nullptr, code, wParam, lParam);
    const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && message.message == obcore::kFinalStageMessage && !failing) {
        failing.emplace(obtest::AllocationPlan{.once = true});
    }
    return result;
}

LPARAM RunOf(HWND dialog) { return GetWindowLongPtrW(dialog, DWLP_USER); }

class TransformProgressDialog : public obtest::TransformsFixture {
protected:
    void SetUp() override {
        TransformsFixture::SetUp();
        WantResize();
        files_ = {L"C:\\t\\a.doc", L"C:\\t\\b.doc"};
    }

    // Runs; `act` works on the dialog while the worker is inside `call`, which goes on after it.
    bool RunHeldIn(const wchar_t* call, const std::function<void(HWND)>& act) {
        Answer(L"Hold", call);
        TransformUiDriver driver([&act](HWND dialog) {
            EXPECT_FALSE(HeldCall::Await().empty());
            act(dialog);
            Answer(L"Hold", L"nothing");
            HeldCall::Release();
        });
        const bool result = Run();
        EXPECT_TRUE(driver.SawDialog());
        return result;
    }

    // Runs until the driver has cancelled; only then the held call goes on, and the worker ends.
    void RunUntilCancelledBy(TransformUiDriver& driver) {
        EXPECT_FALSE(Run());
        EXPECT_TRUE(driver.SawDialog());
        Answer(L"Hold", L"nothing");
        HeldCall::Release();
        EXPECT_TRUE(JoinWorkers());
    }

    // The user cancels by `cancel` while the worker is inside `call`; the call goes on only after
    // the run has returned. The calls from there on.
    // `visit`: 2 for the second such call.
    Lines WrittenAfterCancelIn(const wchar_t* call, const std::function<void(HWND)>& cancel,
                               std::size_t visit = 1) {
        Answer(L"Hold", call);
        TransformUiDriver driver([&](HWND dialog) {
            EXPECT_TRUE(HeldCall::AwaitVisit(call, visit));
            cancel(dialog);
            EXPECT_TRUE(WaitUntilClosed(dialog));
        });
        RunUntilCancelledBy(driver);
        Lines lines = Written();
        for (std::size_t calls = 0; calls < visit; ++calls) {
            const auto held = std::ranges::find_if(
                lines, [call](const std::wstring& line) { return line.starts_with(call); });
            EXPECT_NE(held, lines.end());
            if (held != lines.end()) lines.erase(lines.begin(), held + 1);
        }
        return lines;
    }
};

// Cancel.

TEST_F(TransformProgressDialog, StopsTheRunInEachStageWhenTheUserCancels) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\c.doc|C:\\t\\d.doc");
    Answer(L"GetProviderTarget.c.doc", L"C:\\t\\c.pdf");
    const Lines picked = files_;
    const Lines afterListStage = {L"C:\\t\\c.doc", L"C:\\t\\d.doc"};
    // The list of the last step that was finished before the call.
    const Lines afterEachFile = {L"C:\\t\\c.pdf", L"C:\\t\\d.doc"};
    const struct {
        const wchar_t* call;
        std::size_t visit;
        Lines left;
    } rows[] = {{L"GetSelectedTransformSummary", 1, picked},
                {L"ExecutePostTransforms", 1, picked}, // before the list
                {L"GetTargetFile", 1, picked},
                {L"SetProviderTarget", 1, afterListStage},
                {L"ExecuteTransforms", 1, afterListStage},
                {L"GetProviderTarget", 1, afterListStage},
                {L"ExecutePostTransforms", 2, afterEachFile}, // after the list
                {L"GetTargetFile", 2, afterEachFile}};
    for (const auto& [call, visit, left] : rows) {
        files_ = picked;
        FakeModules::ForgetCalls();
        const Lines lines = WrittenAfterCancelIn(call, &PressCancel, visit);
        // No call, no report; the worker ends the closed dialog once more.
        ASSERT_EQ(lines.size(), 2u) << testing::PrintToString(lines);
        EXPECT_EQ(lines[0], kCancelled);
        EXPECT_TRUE(lines[1].starts_with(L"EndDialog(dialog, "));
        EXPECT_TRUE(lines[1].ends_with(L"[worker]"));
        EXPECT_EQ(files_, left) << testing::PrintToString(std::wstring(call));
    }
}

TEST_F(TransformProgressDialog,
       StopsTheRunWhenTheUserCancelsDuringTheCallThatLeavesAConversionOut) {
    Stages(L"1,1,1,1");
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\c.doc");
    Answer(L"Hold", L"ExecutePostTransforms");
    TransformUiDriver driver([](HWND dialog) {
        EXPECT_FALSE(HeldCall::Await().empty());
        Answer(L"Hold", L"SelectProviders"); // only now: the run begins with such a call as well
        HeldCall::Release();
        EXPECT_TRUE(obtest::WaitUntil(
            [] { return FakeModules::CallsOf({L"SelectProviders"}).size() == 2; }));
        EXPECT_TRUE(HeldCall::Await().starts_with(L"SelectProviders(manager, 1, 70, 4)"));
        PressCancel(dialog);
        EXPECT_TRUE(WaitUntilClosed(dialog));
    });
    RunUntilCancelledBy(driver);
    const Lines lines = Written({L"Execute", L"SetProviderTarget", L"LogApplet", L"EndDialog"});
    ASSERT_EQ(lines.size(), 3u) << testing::PrintToString(lines);
    EXPECT_TRUE(lines[0].starts_with(L"ExecutePostTransforms"));
    EXPECT_EQ(lines[1], kCancelled);
    EXPECT_TRUE(lines[2].ends_with(L"[worker]"));
    EXPECT_EQ(files_, Lines{L"C:\\t\\c.doc"});
}

TEST_F(TransformProgressDialog, MakesNoCallForACancelThatNamesTheRun) {
    Stages(L"0,0,1,1");
    const auto cancel = [](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, RunOf(dialog));
    };
    const Lines lines = WrittenAfterCancelIn(L"ExecuteTransforms", cancel);
    ASSERT_EQ(lines.size(), 2u) << testing::PrintToString(lines);
    EXPECT_EQ(lines[0], kCancelled);
    EXPECT_TRUE(lines[1].starts_with(L"EndDialog(dialog, "));
    EXPECT_TRUE(lines[1].ends_with(L"[worker]"));
}

TEST_F(TransformProgressDialog, IsCancelledByItsCloseBoxAndByEsc) {
    Stages(L"0,0,1,0");
    const auto close = [](HWND dialog) { PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); };
    const auto escape = [](HWND dialog) {
        PostMessageW(FocusOf(dialog), WM_KEYDOWN, VK_ESCAPE, 0);
    };
    EXPECT_EQ(WrittenAfterCancelIn(L"ExecuteTransforms", close).front(), kCancelled);
    FakeModules::ForgetCalls();
    EXPECT_EQ(WrittenAfterCancelIn(L"ExecuteTransforms", escape).front(), kCancelled);
}

TEST_F(TransformProgressDialog, GivesBackTheListOfTheLastFinishedStep) {
    Stages(L"0,0,1,0");
    Answer(L"GetProviderTarget.a.doc", L"C:\\t\\a.pdf");
    Answer(L"GetProviderTarget.b.doc", L"C:\\t\\b.pdf");
    Answer(L"Hold", L"ExecuteTransforms");
    TransformUiDriver driver([](HWND dialog) {
        EXPECT_FALSE(HeldCall::Await().empty());
        HeldCall::Release();
        // The second file's call.
        EXPECT_TRUE(obtest::WaitUntil(
            [] { return FakeModules::CallsOf({L"ExecuteTransforms"}).size() == 2; }));
        EXPECT_FALSE(HeldCall::Await().empty());
        PressCancel(dialog);
        EXPECT_TRUE(WaitUntilClosed(dialog));
    });
    EXPECT_FALSE(Run());
    EXPECT_EQ(files_, (Lines{L"C:\\t\\a.pdf", L"C:\\t\\b.doc"}));
}

TEST_F(TransformProgressDialog, CountsTheCancelAlsoWhenTheFinalStageThenSucceeds) {
    Stages(L"0,0,0,1");
    Answer(L"ExecuteFinalTransforms.waits", L"1"); // dispatches messages until the dialog has ended
    TransformUiDriver driver([](HWND dialog) {
        EXPECT_TRUE(obtest::WaitUntil(
            [] { return !FakeModules::CallsOf({L"ExecuteFinalTransforms"}).empty(); }));
        PressCancel(dialog);
    });
    EXPECT_FALSE(Run());
    EXPECT_TRUE(JoinWorkers());
    EXPECT_TRUE(Written({L"GetTargetFile", L"LogAppletFeature"}).empty());
    EXPECT_EQ(files_, (Lines{L"C:\\t\\a.doc", L"C:\\t\\b.doc"}));
}

TEST_F(TransformProgressDialog, CountsTheCancelAlsoWhenTheWorkerEndsAtTheSameMoment) {
    Stages(L"0,0,1,0");
    // The worker's EndDialog(1) comes right after the cancel's EndDialog(2): the dialog returns 1.
    const FailingCall bothEnds(Fault::EndsAtCancel);
    WrittenAfterCancelIn(L"ExecuteTransforms", &PressCancel); // checks that the run returns false
}

TEST_F(TransformProgressDialog, KeepsTheManagerUntilTheRunningCallHasEnded) {
    Stages(L"1,1,1,1");
    Answer(L"Hold", L"ExecutePostTransforms");
    const std::wstring deletion = L"DeleteObExtensionsManager(manager)";
    TransformUiDriver driver([&](HWND dialog) {
        EXPECT_FALSE(HeldCall::Await().empty());
        PressCancel(dialog);
        // The job's end begins with Deinit and then waits, answering messages.
        EXPECT_TRUE(obtest::WaitUntil([] { return !FakeModules::CallsOf({L"Deinit"}).empty(); }));
        SendMessageW(owner_.Get(), WM_NULL, 0, 0);
        EXPECT_TRUE(FakeModules::CallsOf({L"DeleteObExtensionsManager"}).empty());
        HeldCall::Release();
    });
    {
        obcore::OBAttachJob job(job_, owner_.Get());
        obcore::ProviderManager().Init(job.OwnedProviderManager, 0, L"");
        EXPECT_FALSE(obcore::CompressUtils::RunTransforms(job, files_, L"C:\\t\\"));
        obcore::ProviderManager().Deinit(job.OwnedProviderManager);
    }
    EXPECT_TRUE(driver.SawDialog());
    EXPECT_TRUE(JoinWorkers());
    EXPECT_EQ(Written({L"Deinit", deletion, L"GetTargetFile", L"SelectProviders(manager, 1"}),
              (Lines{L"Deinit(manager) [dialog]", deletion + L" [dialog]"}));
}

TEST_F(TransformProgressDialog, StopsTheRunWhenItsOwnerIsDestroyed) {
    Stages(L"0,0,1,0");
    job_.ParentWindow = CreateWindowExW(0, L"Static", L"page", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                        nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(RunHeldIn(L"ExecuteTransforms", [this](HWND dialog) {
        PostMessageW(job_.ParentWindow, WM_CLOSE, 0, 0);
        EXPECT_TRUE(WaitUntilClosed(dialog));
    }));
}

TEST_F(TransformProgressDialog, StopsTheRunWithoutAThreadWhenItCantBeOpened) {
    Stages(L"0,0,1,0");
    job_.ParentWindow = reinterpret_cast<HWND>(INT_PTR{0x7FFE});
    EXPECT_FALSE(Run());
    EXPECT_TRUE(Written({L"CreateThread", L"Execute", L"LogAppletFeature"}).empty());
    EXPECT_EQ(files_.size(), 2u);
}

// Messages.

TEST_F(TransformProgressDialog, GoesOnAfterACommandThatIsNoCancel) {
    Stages(L"0,0,1,1");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [](HWND dialog) {
        // A window or null in the place of the run: there is nothing to do.
        EXPECT_EQ(SendMessageW(dialog, WM_COMMAND, IDOK, 0), 0);
        SendMessageW(dialog, WM_COMMAND, IDOK,
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDCANCEL)));
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(7, 3), 0);
        EXPECT_EQ(FakeModules::CallsOf({L"GetSelectedTransformSummary"}).size(), 1u);
    }));
}

TEST_F(TransformProgressDialog, GoesOnWhenEnterIsPressed) {
    Stages(L"0,0,1,0");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [](HWND dialog) {
        ASSERT_NE(FocusOf(dialog), nullptr);
        EXPECT_EQ(FocusOf(dialog), GetDlgItem(dialog, OB_TRANSFORM_BAR));
        PostMessageW(FocusOf(dialog), WM_KEYDOWN, VK_RETURN, 0);
        SendMessageW(dialog, WM_NULL, 0, 0);
    }));
    EXPECT_TRUE(Written({kCancelled}).empty());
}

TEST_F(TransformProgressDialog, ReachesCancelByTheTabKey) {
    Stages(L"0,0,1,0");
    const auto tabAndSpace = [](HWND dialog) {
        PostMessageW(FocusOf(dialog), WM_KEYDOWN, VK_TAB, 0);
        const HWND button = GetDlgItem(dialog, IDCANCEL);
        EXPECT_TRUE(obtest::WaitUntil([&] { return FocusOf(dialog) == button; }));
        PostMessageW(button, WM_KEYDOWN, VK_SPACE, 0);
        PostMessageW(button, WM_KEYUP, VK_SPACE, 0);
    };
    EXPECT_EQ(WrittenAfterCancelIn(L"ExecuteTransforms", tabAndSpace).front(), kCancelled);
}

TEST_F(TransformProgressDialog, RunsTheFinalStageForItsOwnRunOnly) {
    Stages(L"0,0,1,0;0,0,1,1");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [](HWND dialog) {
        for (const LPARAM other : {LPARAM{0}, LPARAM{1}, reinterpret_cast<LPARAM>(dialog)}) {
            SendMessageW(dialog, obcore::kFinalStageMessage, 0, other);
        }
        EXPECT_TRUE(FakeModules::CallsOf({L"ExecuteFinalTransforms"}).empty());
        SendMessageW(dialog, obcore::kFinalStageMessage, 0, RunOf(dialog));
        EXPECT_EQ(FakeModules::CallsOf({L"ExecuteFinalTransforms"}).size(), 1u);
    }));
    EXPECT_TRUE(Written({L"ExecuteFinal"})[0].ends_with(L"[dialog]"));
}

TEST_F(TransformProgressDialog, GoesOnFromACommandIntoTheFinalStageOfTheRunThatItNames) {
    Stages(L"0,0,1,0;0,0,1,1");
    Answer(L"ExecuteFinalTransforms", L"0");
    EXPECT_FALSE(RunHeldIn(L"ExecuteTransforms", [](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, 7, RunOf(dialog));
        EXPECT_EQ(FakeModules::CallsOf({L"ExecuteFinalTransforms"}).size(), 1u);
    }));
    EXPECT_EQ(Written({L"EndDialog"}), Lines{L"EndDialog(dialog, 2) [worker]"});
}

TEST_F(TransformProgressDialog, LeavesOtherMessagesToTheSystem) {
    Stages(L"0,0,1,1");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [](HWND dialog) {
        for (const UINT message : {WM_USER, WM_USER + 2, WM_NOTIFY, WM_TIMER, WM_APP}) {
            const LPARAM parameter = message == WM_NOTIFY ? 0 : RunOf(dialog);
            SendMessageW(dialog, message, IDCANCEL, parameter);
            EXPECT_EQ(ProcedureOf(dialog)(dialog, message, IDCANCEL, parameter), 0) << message;
        }
        EXPECT_TRUE(FakeModules::CallsOf({L"ExecuteFinalTransforms"}).empty());
    }));
}

TEST_F(TransformProgressDialog, DisablesItsOwnerWhileItIsOpen) {
    Stages(L"0,0,1,0");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [this](HWND dialog) {
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner_.Get());
        EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
    }));
    EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
}

TEST_F(TransformProgressDialog, BeginsWithAMovingBar) {
    Stages(L"0,1,0,0");
    EXPECT_TRUE(RunHeldIn(L"ExecutePostTransforms", [](HWND dialog) {
        const HWND bar = GetDlgItem(dialog, OB_TRANSFORM_BAR);
        EXPECT_NE(GetWindowLongW(bar, GWL_STYLE) & PBS_MARQUEE, 0);
    }));
}

// The worker.

TEST_F(TransformProgressDialog, StaysOpenWithoutAWorkerUntilTheUserCancels) {
    const FailingCall noThread(Fault::NoThread);
    obtest::ForgetTrace();
    TransformUiDriver driver([](HWND dialog) {
        SendMessageW(dialog, WM_NULL, 0, 0);
        EXPECT_TRUE(IsWindowVisible(dialog));
        PressCancel(dialog);
    });
    EXPECT_FALSE(Run());
    EXPECT_TRUE(driver.SawDialog());
    EXPECT_EQ(Written({L"EndDialog"}), Lines{kCancelled});
    EXPECT_EQ(std::ranges::count(obtest::TraceLines(), std::string(kNoThread)), 1);
}

TEST_F(TransformProgressDialog, StaysOpenWhenMemoryRunsOutForTheWorker) {
    const FailingCall noMemory(Fault::MemoryForThread);
    obtest::ForgetTrace();
    TransformUiDriver driver([](HWND dialog) { PressCancel(dialog); });
    EXPECT_FALSE(Run());
    EXPECT_TRUE(driver.SawDialog());
    EXPECT_EQ(std::ranges::count(obtest::TraceLines(), std::string(kNoThread)), 1);
}

TEST_F(TransformProgressDialog, EndsWith2WhenMemoryRunsOutOnTheWorker) {
    Stages(L"1,1,1,1");
    const FailingCall noMemory(Fault::MemoryInWorker);
    EXPECT_FALSE(Run());
    EXPECT_TRUE(Written({L"Execute"}).empty());
    EXPECT_EQ(Written({L"EndDialog"}), Lines{L"EndDialog(dialog, 2) [worker]"});
}

TEST_F(TransformProgressDialog, EndsWith2WhenMemoryRunsOutInTheFinalStage) {
    Stages(L"0,0,0,1");
    const ObLib::UniqueWindowHook hook(
        SetWindowsHookExW(WH_CALLWNDPROC, &FailAfterwards, nullptr, GetCurrentThreadId()));
    EXPECT_FALSE(Run());
    EXPECT_TRUE(failing && failing->Failed());
    failing.reset();
    EXPECT_TRUE(Written({L"ExecuteFinalTransforms"}).empty());
    EXPECT_EQ(Written({L"EndDialog"}), Lines{L"EndDialog(dialog, 2) [worker]"});
    EXPECT_EQ(files_, (Lines{L"C:\\t\\a.doc", L"C:\\t\\b.doc"}));
}

TEST_F(TransformProgressDialog, EndsWith2WhenThereIsNoMemoryForTheResultsOfAStage) {
    Stages(L"0,1,0,0");
    Answer(L"ExecutePostTransforms.count", L"4294967295");
    EXPECT_FALSE(Run());
    EXPECT_TRUE(Written({L"GetTargetFile"}).empty());
    EXPECT_EQ(files_, (Lines{L"C:\\t\\a.doc", L"C:\\t\\b.doc"}));
}

TEST_F(TransformProgressDialog, ClosesTheThreadsHandleAtOnce) {
    Stages(L"0,0,1,0");
    EXPECT_TRUE(RunHeldIn(L"ExecuteTransforms", [](HWND) {
        // Closed, or the number is that of another object by now.
        EXPECT_NE(GetThreadId(LastThread()), LastThreadId());
        EXPECT_NE(LastThreadId(), 0u);
    }));
}

} // namespace

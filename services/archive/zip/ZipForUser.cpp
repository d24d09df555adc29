#include "services/archive/zip/ZipForUser.h"

#include <atomic>
#include <mutex>
#include <new>
#include <optional>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/ThisModule.h"
#include "services/archive/ui/ProgressWindow.h"
#include "services/archive/ui/ProgressWindowIds.h"
#include "services/archive/ui/TimeLeft.h"
#include "services/archive/zip/ZipMessages.h"
#include "services/archive/zip/ZipRun.h"

namespace obarchive {
namespace {

constexpr std::uint64_t kShownAfter = 500; // milliseconds
constexpr DWORD kTick = 50;                // between two looks at how far the run is
constexpr std::uint64_t kPatience = 1000;  // after a cancel, before a blocked read is broken off

std::uint64_t SystemClock() { return GetTickCount64(); }

// What the two threads share.
class SharedRun {
public:
    explicit SharedRun(const ZipWork& work) : work_(work) {}

    // On the run's own thread.
    void Do() noexcept {
        try {
            result_ = work_([this](const ZipProgress& now) { return Report(now); });
        } catch (const std::bad_alloc&) {
            result_ = ZipResult::OutOfMemory;
        } catch (...) {
            result_ = ZipResult::Unexpected;
        }
    }

    ProgressView View() const {
        const std::lock_guard guard(lock_);
        return view_;
    }
    void Cancel() { cancelled_ = true; }
    bool IsCancelled() const { return cancelled_; }
    // The work knows of the cancel and is ending.
    bool HasHeardCancel() const { return heard_; }
    std::uint64_t Reports() const { return reports_; }

    // After the thread has ended.
    ZipResult Result() const { return cancelled_ ? ZipResult::Cancelled : result_; }

private:
    bool Report(const ZipProgress& now) {
        const std::lock_guard guard(lock_);
        if (view_.file != now.file) view_.file = now.file;
        view_.bytesRead = now.bytesRead;
        view_.totalBytes = now.totalBytes;
        ++reports_;
        if (cancelled_) heard_ = true;
        return !cancelled_;
    }

    const ZipWork& work_;
    mutable std::mutex lock_;
    ProgressView view_;
    ZipResult result_ = ZipResult::Unexpected;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> heard_ = false;
    std::atomic<std::uint64_t> reports_ = 0;
};

DWORD WINAPI RunEntry(void* run) {
    static_cast<SharedRun*>(run)->Do();
    return 0;
}

// The run's thread; whoever leaves the scope waits for its end.
class RunThread {
public:
    explicit RunThread(SharedRun& run)
        : run_(run), thread_(CreateThread(nullptr, 0, &RunEntry, &run, 0, nullptr)) {}
    ~RunThread() {
        if (!thread_) return;
        // Only an exception on the calling thread finds it still running.
        if (!IsOver()) run_.Cancel();
        WaitForSingleObject(thread_.Get(), INFINITE);
    }
    RunThread(const RunThread&) = delete;
    RunThread& operator=(const RunThread&) = delete;

    bool Exists() const { return static_cast<bool>(thread_); }
    bool IsOver() const { return WaitForSingleObject(thread_.Get(), 0) == WAIT_OBJECT_0; }
    HANDLE Get() const { return thread_.Get(); }

    // Waits a tick for the thread's end or for messages of these kinds; true when it has ended.
    bool HasEnded(DWORD messages) const {
        const HANDLE thread = thread_.Get();
        return MsgWaitForMultipleObjectsEx(1, &thread, kTick, messages, MWMO_INPUTAVAILABLE) ==
               WAIT_OBJECT_0;
    }

private:
    SharedRun& run_;
    ObLib::UniqueKernelHandle thread_;
};

// Lets other threads' sent messages through and leaves those of the queue where they are.
void AnswerSentMessages() {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

// Dispatches what waits in the queue; the code of a WM_QUIT is noted.
void DispatchMessages(const ProgressWindow& window, std::optional<int>& quitCode) {
    constexpr int kMostAtOnce = 50; // so that a flood doesn't hide the end of the run
    MSG message;
    for (int count = 0; count < kMostAtOnce; ++count) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return;
        if (message.message == WM_QUIT) {
            quitCode = static_cast<int>(message.wParam);
        } else if (!window.Takes(message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

// Breaks off a blocked read, which would keep the run from noticing its cancel, as on a network
// share that no longer responds. Once only, and never while the run is cleaning up.
class BlockedRead {
public:
    void Look(const SharedRun& run, const RunThread& thread, std::uint64_t now) {
        if (!run.IsCancelled() || broken_) return;
        if (!since_ || run.Reports() != reports_) {
            since_ = now;
            reports_ = run.Reports();
        }
        if (run.HasHeardCancel() || now - *since_ < kPatience) return;
        broken_ = true;
        CancelSynchronousIo(thread.Get());
    }

private:
    std::optional<std::uint64_t> since_;
    std::uint64_t reports_ = 0;
    bool broken_ = false;
};

std::wstring TimeText(const ProgressView& view, bool cancelled, const TimeLeft& timeLeft,
                      std::uint64_t now) {
    if (cancelled) return OwnText(OB_TEXT_PROGRESS_CANCELLING);
    const bool allRead = view.totalBytes != 0 && view.bytesRead >= view.totalBytes;
    if (allRead) return OwnText(OB_TEXT_PROGRESS_FINISHING);
    const auto seconds = timeLeft.Seconds(now);
    return seconds ? TimeLeftText(*seconds) : std::wstring();
}

void ShowUntilEnd(HWND owner, SharedRun& run, const RunThread& thread, ProgressClock clock,
                  std::uint64_t start, std::optional<int>& quitCode) {
    ProgressWindow window(owner);
    TimeLeft timeLeft(start);
    BlockedRead blockedRead;
    do {
        DispatchMessages(window, quitCode);
        if (window.IsCancelAsked() || quitCode) run.Cancel();
        const std::uint64_t now = clock();
        ProgressView view = run.View();
        timeLeft.Note(now, view.bytesRead, view.totalBytes);
        view.timeLeft = TimeText(view, run.IsCancelled(), timeLeft, now);
        window.Show(view);
        blockedRead.Look(run, thread, now);
    } while (!thread.HasEnded(QS_ALLINPUT));
}

ZipResult ZipJobWithProgress(HWND owner, const ZipJob& job, std::wstring& failedFile) {
    RunPaths paths;
    bool made = false;
    const ZipResult result = RunWithProgress(owner, [&](const ProgressCallback& progress) {
        const ZipResult run = RunZip(job, progress, &paths);
        made = run == ZipResult::Ok;
        return run;
    });
    // The user cancelled before the window closed. Until the call returns, the zip is this run's
    // own.
    if (made && result == ZipResult::Cancelled) DeleteFileW(paths.target.c_str());
    failedFile = paths.failed;
    return result;
}

} // namespace

ZipResult RunWithProgress(HWND owner, const ZipWork& work, ProgressClock clock) {
    const ProgressClock now = clock ? clock : &SystemClock;
    SharedRun run(work);
    std::optional<int> quitCode;
    {
        const RunThread thread(run);
        if (!thread.Exists()) return work({});
        const std::uint64_t start = now();
        bool ended = thread.HasEnded(QS_SENDMESSAGE);
        while (!ended && now() - start < kShownAfter) {
            AnswerSentMessages();
            ended = thread.HasEnded(QS_SENDMESSAGE);
        }
        if (!ended) ShowUntilEnd(owner, run, thread, now, start, quitCode);
    }
    if (quitCode) PostQuitMessage(*quitCode);
    return run.Result();
}

ZipResult ZipForUser(HWND owner, const ZipJob& job) noexcept {
    try {
        std::wstring failedFile;
        const ZipResult result = ZipJobWithProgress(owner, job, failedFile);
        TellFailure(owner, result, failedFile);
        return result;
    } catch (const std::bad_alloc&) {
        return RefuseForUser(owner, ZipResult::OutOfMemory);
    } catch (...) {
        return RefuseForUser(owner, ZipResult::Unexpected);
    }
}

ZipResult RefuseForUser(HWND owner, ZipResult result) noexcept {
    // No memory for the message: the user then sees only the caller's own.
    ObLib::RanGuarded([=] { TellFailure(owner, result, {}); });
    return result;
}

} // namespace obarchive

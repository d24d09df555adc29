#include "services/providers/storage/UploadRun.h"

#include <exception>
#include <mutex>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/OwnerWindow.h"
#include "services/providers/storage/TransferRate.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/storage/UploadTimes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr std::uint64_t kShownAfter = 500; // milliseconds, as all below
constexpr DWORD kTick = 50;                // between two looks at how far the upload is
constexpr DWORD kPokeInterval = 100;       // between two tries to close a question

std::uint64_t SystemClock() { return GetTickCount64(); }

bool IsSet(HANDLE event) { return WaitForSingleObject(event, 0) == WAIT_OBJECT_0; }

ObLib::UniqueKernelHandle MakeEvent() {
    return ObLib::UniqueKernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

// Cancels the dialog that the owner shows, or one that this dialog shows itself.
BOOL CALLBACK CancelIfOwned(HWND window, LPARAM owner) noexcept {
    HWND above = GetWindow(window, GW_OWNER);
    while (above && above != reinterpret_cast<HWND>(owner)) above = GetWindow(above, GW_OWNER);
    if (above && IsWindowVisible(window) && IsWindowEnabled(window)) {
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }
    return TRUE;
}

// A question of the upload's thread, answered on the thread of the dialogs.
struct Question {
    const std::function<void(HWND)>& ask;
    ObLib::UniqueKernelHandle answered = MakeEvent();
    std::exception_ptr error;
    HWND owner = nullptr; // set when the question is taken
};

// What the two threads share.
class SharedUpload final : public UploadProgress {
public:
    SharedUpload(StorageProvider& provider, const std::wstring& accountKey, const UploadFile& file,
                 HANDLE ended)
        : provider_(provider), accountKey_(accountKey), file_(file), ended_(ended) {}

    bool Exists() const { return cancelled_ && asked_; }

    // On the upload's own thread.
    void Do() noexcept {
        ObLib::RanGuarded([this] { result_ = provider_.Upload(accountKey_, file_, *this); });
    }
    void Show(std::uint64_t sent, std::uint64_t total) override {
        const std::lock_guard guard(lock_);
        sent_ = sent;
        total_ = total;
    }
    HANDLE Cancelled() const override { return cancelled_.Get(); }
    bool Ask(const std::function<void(HWND)>& ask) override {
        Question question{ask};
        if (!question.answered || IsCancelled() || !Hand(question)) return false;
        if (question.error) std::rethrow_exception(question.error);
        return true;
    }

    // On the thread of the dialogs.
    void Cancel() noexcept { SetEvent(cancelled_.Get()); }
    bool IsCancelled() const { return IsSet(cancelled_.Get()); }
    HANDLE Asked() const { return asked_.Get(); }
    UploadView View() const {
        const std::lock_guard guard(lock_);
        return {sent_, total_, {}, {}};
    }
    bool HasQuestion() const {
        const std::lock_guard guard(lock_);
        return question_ != nullptr;
    }
    // Runs the question that waits, if there still is one.
    void Answer(HWND owner) {
        Question* const question = Take(owner);
        if (!question) return;
        try {
            question->ask(owner);
        } catch (...) {
            question->error = std::current_exception();
        }
        SetEvent(question->answered.Get());
    }

    // After the thread has ended.
    UploadResult Result() {
        if (IsCancelled() && result_.end != UploadEnd::Done) return {UploadEnd::Cancelled, {}, {}};
        return std::move(result_);
    }

private:
    // False when the upload was to end before the question was taken.
    bool Hand(Question& question) {
        {
            const std::lock_guard guard(lock_);
            question_ = &question;
        }
        SetEvent(asked_.Get());
        const HANDLE events[] = {question.answered.Get(), cancelled_.Get(), ended_};
        WaitForMultipleObjects(3, events, FALSE, INFINITE);
        {
            const std::lock_guard guard(lock_);
            ResetEvent(asked_.Get());
            if (std::exchange(question_, nullptr)) return false;
        }
        AwaitAnswer(question);
        return true;
    }
    // The thread of the dialogs is inside the question, and can't notice the session's end there.
    void AwaitAnswer(const Question& question) const {
        const HANDLE events[] = {question.answered.Get(), ended_};
        WaitForMultipleObjects(2, events, FALSE, INFINITE);
        while (WaitForSingleObject(question.answered.Get(), kPokeInterval) == WAIT_TIMEOUT) {
            const DWORD thread = GetWindowThreadProcessId(question.owner, nullptr);
            EnumThreadWindows(thread, &CancelIfOwned, reinterpret_cast<LPARAM>(question.owner));
        }
    }
    Question* Take(HWND owner) {
        const std::lock_guard guard(lock_);
        if (question_) question_->owner = owner;
        return std::exchange(question_, nullptr);
    }

    StorageProvider& provider_;
    const std::wstring& accountKey_;
    const UploadFile& file_;
    HANDLE ended_;
    ObLib::UniqueKernelHandle cancelled_ = MakeEvent();
    ObLib::UniqueKernelHandle asked_ = MakeEvent();
    mutable std::mutex lock_; // of the three below
    std::uint64_t sent_ = 0;
    std::uint64_t total_ = 0;
    Question* question_ = nullptr; // that waits
    UploadResult result_;
};

DWORD WINAPI UploadEntry(void* upload) {
    static_cast<SharedUpload*>(upload)->Do();
    return 0;
}

// The upload's thread; whoever leaves the scope waits for its end.
class UploadThread {
public:
    explicit UploadThread(SharedUpload& upload)
        : upload_(upload), thread_(CreateThread(nullptr, 0, &UploadEntry, &upload, 0, nullptr)) {}
    ~UploadThread() {
        if (!thread_) return;
        // Only after an exception on the calling thread it is still running.
        if (!IsSet(thread_.Get())) upload_.Cancel();
        WaitForSingleObject(thread_.Get(), INFINITE);
    }
    UploadThread(const UploadThread&) = delete;
    UploadThread& operator=(const UploadThread&) = delete;

    HANDLE Get() const { return thread_.Get(); }

private:
    SharedUpload& upload_;
    ObLib::UniqueKernelHandle thread_;
};

// The calling thread while the upload runs.
class UploadWait {
public:
    UploadWait(SharedUpload& upload, const UploadTexts& texts, const std::wstring& fileName,
               HWND owner, UploadClock clock)
        : upload_(upload), texts_(texts), fileName_(fileName), owner_(owner), clock_(clock),
          start_(clock()), rate_(start_), disabled_(owner) {}
    ~UploadWait() {
        if (quitCode_) PostQuitMessage(*quitCode_);
    }
    UploadWait(const UploadWait&) = delete;
    UploadWait& operator=(const UploadWait&) = delete;

    void Until(HANDLE thread, HANDLE ended) {
        const HANDLE events[] = {thread, upload_.Asked()};
        do {
            DispatchMessages();
            if (IsSet(ended) || (owner_ && !IsWindow(owner_)) || quitCode_ ||
                (window_ && window_->IsCancelAsked())) {
                upload_.Cancel();
            }
            if (upload_.HasQuestion()) Answer();
            ShowProgress();
        } while (MsgWaitForMultipleObjectsEx(2, events, kTick, QS_ALLINPUT, MWMO_INPUTAVAILABLE) !=
                 WAIT_OBJECT_0);
    }

private:
    void DispatchMessages() {
        constexpr int kMostAtOnce = 50; // so that a flood doesn't hide the end of the upload
        MSG message;
        for (int count = 0; count < kMostAtOnce; ++count) {
            if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return;
            if (message.message == WM_QUIT) {
                quitCode_ = static_cast<int>(message.wParam);
            } else if (!window_ || !window_->Takes(message)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    }
    // A cancel takes the question back instead.
    void Answer() {
        if (upload_.IsCancelled()) return;
        OpenWindow();
        upload_.Answer(window_->Get() ? window_->Get() : owner_);
        rate_.LeaveOutUntil(clock_());
    }
    void OpenWindow() {
        if (!window_) window_.emplace(texts_, fileName_, owner_);
    }
    void ShowProgress() {
        const std::uint64_t now = clock_();
        UploadView view = upload_.View();
        rate_.Note(now, view.sent, view.total);
        if (!window_ && (now - start_ < kShownAfter || upload_.IsCancelled())) return;
        OpenWindow();
        view.speed = UploadSpeedText(view.sent, view.total, rate_.BytesPerSecond());
        view.timeLeft = TimeText(view, now);
        window_->Show(view);
    }
    std::wstring TimeText(const UploadView& view, std::uint64_t now) const {
        if (upload_.IsCancelled()) return OwnText(OB_TEXT_UPLOAD_CANCELLING);
        const bool allSent = view.total != 0 && view.sent >= view.total;
        if (allSent) return OwnText(OB_TEXT_UPLOAD_FINISHING);
        const auto seconds = rate_.SecondsLeft(now);
        return seconds ? UploadTimeText(*seconds) : std::wstring();
    }

    SharedUpload& upload_;
    const UploadTexts& texts_;
    const std::wstring& fileName_;
    HWND owner_; // a top-level window, or null
    UploadClock clock_;
    std::uint64_t start_;
    TransferRate rate_;
    std::optional<int> quitCode_;
    // Destroyed from the last one to the first one.
    KeptFocus focus_;
    std::optional<UploadWindow> window_;
    DisabledOwner disabled_;
};

} // namespace

UploadResult RunUploadInWindow(StorageProvider& provider, const std::wstring& accountKey,
                               const UploadFile& file, const UploadTexts& texts, HWND owner,
                               HANDLE ended, UploadClock clock) {
    if (owner && !IsWindow(owner)) return {UploadEnd::Cancelled, {}, {}};
    SharedUpload upload(provider, accountKey, file, ended);
    if (!upload.Exists()) return {};
    bool wasWatched = false;
    {
        // Ends before the wait does, which re-enables the owner.
        UploadWait wait(upload, texts, file.name, owner ? GetAncestor(owner, GA_ROOT) : nullptr,
                        clock ? clock : &SystemClock);
        const UploadThread thread(upload);
        if (!thread.Get()) return {};
        wasWatched = ObLib::RanGuarded([&] { wait.Until(thread.Get(), ended); });
    }
    UploadResult result = upload.Result();
    // Where the memory ran out here, the upload was ended, but not by the user. A file that was
    // stored all the same is done.
    if (!wasWatched && result.end == UploadEnd::Cancelled) return {};
    return result;
}

} // namespace providers

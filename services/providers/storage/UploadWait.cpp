#include "services/providers/storage/UploadWait.h"

#include "services/providers/storage/UploadTimes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr std::uint64_t kShownAfter = 500; // milliseconds, as below
constexpr DWORD kTick = 50;                // between two looks at how far the upload is

} // namespace

UploadWait::UploadWait(SharedUpload& upload, const UploadTexts& texts, const std::wstring& fileName,
                       HWND owner, UploadClock clock)
    : upload_(upload), texts_(texts), fileName_(fileName), owner_(owner), clock_(clock),
      start_(clock()), rate_(start_), disabled_(owner) {}

void UploadWait::Until(HANDLE thread, HANDLE ended) {
    const HANDLE events[] = {thread, upload_.Asked()};
    do {
        DispatchMessages();
        if (IsSet(ended) || (owner_ && !IsWindow(owner_)) || quit_.HasCome() ||
            (window_ && window_->IsCancelAsked())) {
            upload_.Cancel();
        }
        if (upload_.HasQuestion()) Answer();
        ShowProgress();
    } while (MsgWaitForMultipleObjectsEx(2, events, kTick, QS_ALLINPUT, MWMO_INPUTAVAILABLE) !=
             WAIT_OBJECT_0);
}

void UploadWait::DispatchMessages() {
    HandlePendingMessages([this](MSG& message) {
        if (!quit_.Takes(message) && !(window_ && window_->Takes(message))) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        return true;
    });
}

// A cancel takes the question back instead.
void UploadWait::Answer() {
    if (upload_.IsCancelled()) return;
    OpenWindow();
    upload_.Answer(window_->Get() ? window_->Get() : owner_);
    rate_.LeaveOutUntil(clock_());
}

void UploadWait::OpenWindow() {
    if (!window_) window_.emplace(texts_, fileName_, owner_);
}

void UploadWait::ShowProgress() {
    const std::uint64_t now = clock_();
    UploadView view = upload_.View();
    rate_.Note(now, view.sent, view.total);
    if (!window_ && (now - start_ < kShownAfter || upload_.IsCancelled())) return;
    OpenWindow();
    view.speed = UploadSpeedText(view.sent, view.total, rate_.BytesPerSecond());
    view.timeLeft = TimeText(view, now);
    window_->Show(view);
}

std::wstring UploadWait::TimeText(const UploadView& view, std::uint64_t now) const {
    if (upload_.IsCancelled()) return OwnText(OB_TEXT_UPLOAD_CANCELLING);
    const bool allSent = view.total != 0 && view.sent >= view.total;
    if (allSent) return OwnText(OB_TEXT_UPLOAD_FINISHING);
    const auto seconds = rate_.SecondsLeft(now);
    return seconds ? UploadTimeText(*seconds) : std::wstring();
}

} // namespace providers

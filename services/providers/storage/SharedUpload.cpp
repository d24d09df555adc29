#include "services/providers/storage/SharedUpload.h"

#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/worker/ThreadMessages.h"

namespace providers {
namespace {

constexpr DWORD kPokeInterval = 100; // milliseconds between two tries to close a question

DWORD WINAPI UploadEntry(void* upload) {
    static_cast<SharedUpload*>(upload)->Do();
    return 0;
}

} // namespace

void SharedUpload::Do() noexcept {
    ObLib::RanGuarded([this] { result_ = provider_.Upload(accountKey_, file_, *this); });
}

void SharedUpload::Show(std::uint64_t sent, std::uint64_t total) {
    const std::lock_guard guard(lock_);
    sent_ = sent;
    total_ = total;
}

bool SharedUpload::Ask(const std::function<void(HWND)>& ask) {
    Question question{ask};
    if (IsCancelled() || !Hand(question)) return false;
    if (question.error) std::rethrow_exception(question.error);
    return true;
}

// False when the upload was to end before the question was taken.
bool SharedUpload::Hand(Question& question) {
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
void SharedUpload::AwaitAnswer(const Question& question) const {
    const HANDLE events[] = {question.answered.Get(), ended_};
    WaitForMultipleObjects(2, events, FALSE, INFINITE);
    while (WaitForSingleObject(question.answered.Get(), kPokeInterval) == WAIT_TIMEOUT) {
        CancelDialogOf(question.thread, question.owner);
    }
}

UploadView SharedUpload::View() const {
    const std::lock_guard guard(lock_);
    return {sent_, total_, {}, {}};
}

bool SharedUpload::HasQuestion() const {
    const std::lock_guard guard(lock_);
    return question_ != nullptr;
}

SharedUpload::Question* SharedUpload::Take(HWND owner) {
    const std::lock_guard guard(lock_);
    if (question_) {
        question_->thread = GetCurrentThreadId(); // an owner may be missing
        question_->owner = owner;
    }
    return std::exchange(question_, nullptr);
}

void SharedUpload::Answer(HWND owner) {
    Question* const question = Take(owner);
    if (!question) return;
    try {
        question->ask(owner);
    } catch (...) {
        question->error = std::current_exception();
    }
    SetEvent(question->answered.Get());
}

UploadResult SharedUpload::Result() {
    if (IsCancelled() && result_.end != UploadEnd::Done) return {UploadEnd::Cancelled, {}, {}};
    return std::move(result_);
}

UploadThread::UploadThread(SharedUpload& upload)
    : upload_(upload), thread_(CreateThread(nullptr, 0, &UploadEntry, &upload, 0, nullptr)) {}

UploadThread::~UploadThread() {
    if (!thread_) return;
    // Only after an exception on the calling thread it is still running.
    if (!IsSet(thread_.Get())) upload_.Cancel();
    WaitForSingleObject(thread_.Get(), INFINITE);
}

} // namespace providers

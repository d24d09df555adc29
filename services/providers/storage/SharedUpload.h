// An upload on a thread of its own, and what that thread shares with the one of the dialogs.
#pragma once

#include <windows.h>

#include <exception>
#include <functional>
#include <mutex>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/StorageProvider.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/worker/Event.h"

namespace providers {

class SharedUpload final : public UploadProgress {
public:
    // All outlive this object. Throws std::bad_alloc.
    SharedUpload(StorageProvider& provider, const std::wstring& accountKey, const UploadFile& file,
                 HANDLE ended)
        : provider_(provider), accountKey_(accountKey), file_(file), ended_(ended) {}

    // On the upload's own thread.
    void Do() noexcept;
    void Show(std::uint64_t sent, std::uint64_t total) override;
    HANDLE Cancelled() const override { return cancelled_.Get(); }
    bool Ask(const std::function<void(HWND)>& ask) override;

    // On the thread of the dialogs.
    void Cancel() noexcept { SetEvent(cancelled_.Get()); }
    bool IsCancelled() const { return IsSet(cancelled_.Get()); }
    HANDLE Asked() const { return asked_.Get(); }
    UploadView View() const;
    bool HasQuestion() const;
    // Runs the question that waits, if there still is one.
    void Answer(HWND owner);

    // After the thread has ended.
    UploadResult Result();

private:
    // A question of the upload's thread, answered on the thread of the dialogs.
    struct Question {
        const std::function<void(HWND)>& ask;
        ObLib::UniqueKernelHandle answered = MakeEvent();
        std::exception_ptr error = {};
        DWORD thread = 0; // with the owner set when the question is taken
        HWND owner = nullptr;
    };

    bool Hand(Question& question);
    void AwaitAnswer(const Question& question) const;
    Question* Take(HWND owner);

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

// The upload's thread; whoever leaves the scope waits for its end.
class UploadThread {
public:
    explicit UploadThread(SharedUpload& upload);
    ~UploadThread();
    UploadThread(const UploadThread&) = delete;
    UploadThread& operator=(const UploadThread&) = delete;

    // Null when the system has none left.
    HANDLE Get() const { return thread_.Get(); }

private:
    SharedUpload& upload_;
    ObLib::UniqueKernelHandle thread_;
};

} // namespace providers

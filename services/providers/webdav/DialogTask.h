// Work that a dialog has done on a thread of its own and doesn't wait for.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/worker/DetachedThread.h"
#include "services/providers/worker/Event.h"

namespace providers {

// Used on the thread of the dialog. The work gets an event, which is set when the task is
// destroyed: nobody is interested in the result any more then, so the work owns all that it uses.
template <class Result>
class DialogTask {
public:
    // `message` is posted to the dialog at the end, with the task's number in wParam.
    DialogTask(HWND dialog, UINT message, std::function<Result(HANDLE cancelled)> work) {
        const auto run = [state = state_, dialog, message, number = number_,
                          work = std::move(work)] {
            ObLib::RanGuarded([&] { state->result = work(state->cancelled.Get()); });
            state->isDone = true;
            PostMessageW(dialog, message, number, 0);
        };
        if (RunDetached(run)) return;
        state_->isDone = true;
        PostMessageW(dialog, message, number_, 0);
    }
    ~DialogTask() { SetEvent(state_->cancelled.Get()); }
    DialogTask(const DialogTask&) = delete;
    DialogTask& operator=(const DialogTask&) = delete;

    // Whether a message with this number is this task's, which has ended then.
    bool IsDone(WPARAM number) const { return number == number_ && state_->isDone; }

    // Once, after the end. Nothing when the work threw or there was no thread for it.
    std::optional<Result> TakeResult() { return std::exchange(state_->result, std::nullopt); }

private:
    struct State {
        const ObLib::UniqueKernelHandle cancelled = MakeEvent();
        std::optional<Result> result; // the thread's until isDone
        std::atomic<bool> isDone = false;
    };

    static WPARAM NextNumber() {
        static std::atomic<WPARAM> last = 0; // of all dialogs: window handles are used again
        return ++last;
    }

    const WPARAM number_ = NextNumber();
    const std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace providers

// The window that is open while a zip is made.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obarchive {

// What the window shows.
struct ProgressView {
    std::wstring file;            // full path of the source that is being read; may be empty
    std::uint64_t bytesRead = 0;  // of all sources
    std::uint64_t totalBytes = 0; // 0: not known; the bar then moves without a measure
    std::wstring timeLeft;        // under the bar
};

// Created, used and destroyed on one thread; the caller dispatches that thread's messages. The
// owner is disabled as long as this object exists, and is then enabled if it was before. The owner
// may be null or no longer exist, and may belong to another process.
class ProgressWindow {
public:
    explicit ProgressWindow(HWND owner);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    // Updates only what has changed. The bar never moves back.
    void Show(const ProgressView& view);

    // True once the user has cancelled by the button, Esc or the close box, or once the window was
    // destroyed with its owner. Stays true.
    bool IsCancelAsked() const { return cancelAsked_; }

    // Handles the message and returns true if it is one for the window.
    bool Takes(MSG& message) const { return window_ && IsDialogMessageW(window_.Get(), &message); }

private:
    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void OnCancel();
    void OnDestroyed();
    void ShowBar(const ProgressView& view);
    void ShowText(int id, std::wstring& shown, const std::wstring& text);

    HWND disabledOwner_ = nullptr; // to be enabled at the end; null for none
    ObLib::UniqueWindow window_;   // empty when it couldn't be created
    std::wstring shownFile_;
    std::wstring shownTime_;
    int shownStep_ = -1;
    bool marquee_ = false;
    bool cancelAsked_ = false;
};

} // namespace obarchive

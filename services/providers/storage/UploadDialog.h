// The window that is open during an upload.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/UploadTexts.h"

namespace providers {

// What changes in the window.
struct UploadView {
    std::uint64_t sent = 0;  // bytes
    std::uint64_t total = 0; // 0: not known; the bar then moves without a measure
    std::wstring speed;      // under the bar
    std::wstring timeLeft;   // under the speed
};

// Created, used and destroyed on one thread; the caller dispatches that thread's messages and
// disables the owner, which may be null.
class UploadWindow {
public:
    UploadWindow(const UploadTexts& texts, const std::wstring& fileName, HWND owner);
    ~UploadWindow();
    UploadWindow(const UploadWindow&) = delete;
    UploadWindow& operator=(const UploadWindow&) = delete;

    // Null when it couldn't be created, and after it was destroyed with its owner.
    HWND Get() const noexcept { return window_.Get(); }

    // Updates only what has changed.
    void Show(const UploadView& view);

    // True once the user has cancelled by the button, Esc or the close box, or once the window was
    // destroyed with its owner. Stays true.
    bool IsCancelAsked() const noexcept { return isCancelAsked_; }

    // Handles the message and returns true if it is one for the window.
    bool Takes(MSG& message) const { return window_ && IsDialogMessageW(window_.Get(), &message); }

private:
    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void OnCancel() noexcept;
    void OnDestroyed() noexcept;
    void ShowBar(const UploadView& view);
    void ShowText(int id, std::wstring& shown, const std::wstring& text);

    ObLib::UniqueWindow window_;
    std::wstring shownSpeed_;
    std::wstring shownTime_;
    int shownStep_ = -1;
    bool isMarquee_ = false;
    bool isCancelAsked_ = false;
};

} // namespace providers

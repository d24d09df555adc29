// The window that a person sees while a zip takes its time.
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
    std::uint64_t totalBytes = 0; // 0: not known, the bar then only shows that work goes on
    std::wstring timeLeft;        // under the bar
};

// Made, used and ended on one thread, whose messages the caller pumps. While it lives, the owner is
// disabled; at the end the owner is as enabled as it was before. The owner may be null or gone, and
// may belong to another process.
class ProgressWindow {
public:
    explicit ProgressWindow(HWND owner);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    // Repaints only what differs from before. The bar never goes back.
    void Show(const ProgressView& view);

    // The person asked for an end: the button, Esc, the close box; or the window was destroyed with
    // its owner, so that nobody is left to wait for the zip. Stays true.
    bool IsCancelAsked() const { return cancelAsked_; }

    // True when the message was one of the window's own, which is done then.
    bool Takes(MSG& message) const { return window_ && IsDialogMessageW(window_.Get(), &message); }

private:
    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void OnCancel();
    void OnDestroyed();
    void ShowBar(const ProgressView& view);
    void ShowText(int id, std::wstring& shown, const std::wstring& text);

    HWND disabledOwner_ = nullptr; // null when there is none to be enabled again
    ObLib::UniqueWindow window_;   // empty when it couldn't be made
    std::wstring shownFile_;
    std::wstring shownTime_;
    int shownStep_ = -1;
    bool marquee_ = false;
    bool cancelAsked_ = false;
};

} // namespace obarchive

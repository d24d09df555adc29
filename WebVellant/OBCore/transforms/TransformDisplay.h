// What the progress dialog of the transforms shows.
#pragma once

#include <windows.h>

#include <string>

namespace obcore {

// The bar and the status text of an open dialog. Used on the worker thread: each call waits until
// the dialog's thread has taken it. A dialog that has closed shows nothing, without a failure.
class TransformDisplay {
public:
    explicit TransformDisplay(HWND dialog) noexcept;

    // A bar that moves without a measure: how much there is to do isn't known.
    void StartMarquee() const;

    // The same after a bar of steps; a bar that moves already stays as it is.
    void ReturnToMarquee() const;

    // A bar of `files` steps.
    void LeaveMarquee(std::size_t files) const;

    void ShowDone(std::size_t files) const;

    // The status text: the label, and the file name after it, cut so that both fit. An empty name
    // leaves the label.
    void ShowFile(const std::wstring& fileName) const;

private:
    HWND dialog_;
    HWND bar_;
};

} // namespace obcore

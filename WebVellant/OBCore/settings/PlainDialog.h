// A dialog of stock controls on white, with a plain dialog procedure.
#pragma once

#include <windows.h>

namespace obcore {

// On the caller's stack for one Show. What an override throws ends in the dialog procedure; a
// dialog that can't be filled counts as cancelled.
class PlainDialog {
public:
    PlainDialog() = default;
    PlainDialog(const PlainDialog&) = delete;
    PlainDialog& operator=(const PlainDialog&) = delete;

    // Runs the dialog in the middle of its owner, in the font of the flat dialogs. Returns what it
    // was ended with: 2 for a cancel, -1 when it can't be made. The texts are bound.
    INT_PTR Show(int templateId, HWND owner);

protected:
    virtual ~PlainDialog() = default;
    virtual void OnOpen(HWND window) = 0;
    // Not for IDCANCEL, which ends the dialog with 2.
    virtual void OnCommand(HWND window, int id) = 0;

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept;
    INT_PTR OnMessage(HWND window, UINT message, WPARAM wParam);
};

} // namespace obcore

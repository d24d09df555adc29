// The contract with the hook layer: what a browser-side export may ask of its caller.
//
// The hook implements this interface and may be built by another compiler, so the order of the
// slots is the contract: no virtual destructor, no overloads, no results by structure.
#pragma once

#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <cstdint>

namespace obcontract {

// Supplied by the hook with each call of an export, on the browser thread that made the call.
// Owned by the caller; the library never keeps the pointer beyond that call.
class BrowserContext {
public:
    // Slot 0. Runs the browser's own open-file dialog; its BOOL becomes the export's result.
    virtual BOOL CallGetOpenFileName(OPENFILENAMEW* request) = 0;

    // Slot 1. Runs the browser's own IFileDialog::Show.
    virtual HRESULT CallShow(IFileDialog* dialog, HWND owner) = 0;

    // Slot 2. Runs the browser's own IFileDialog::GetResult.
    virtual HRESULT CallGetResult(IFileDialog* dialog, IShellItem** out) = 0;

    // Slot 3. Runs the browser's own IFileOpenDialog::GetResults.
    virtual HRESULT CallGetResults(IFileDialog* dialog, IShellItemArray** out) = 0;

    // Slot 4. The URL of the page: NUL-terminated, never null, owned by the context.
    virtual const wchar_t* GetPageUrl() = 0;

    // Slot 5. Window classes of the browser's main window, tried in array order. Owned by the
    // context; slot 6 returns their number.
    virtual const wchar_t* const* GetBrowserWindowClasses() = 0;

    // Slot 6. Length of that array; zero or less means that no window is searched.
    virtual std::int32_t GetBrowserWindowClassCount() = 0;

    // Slot 7. The hook's last veto, asked only when the site rules let the picker through. Only
    // the low byte of the result counts: 0 sends the call to the browser's own dialog.
    virtual std::uint8_t IsPickerWanted() = 0;

    // Slot 8. The page is to receive this text with cloud links instead of a file.
    virtual void InsertLinkText(const wchar_t* text) = 0;

    // Slot 9. The host made temporary output for this attachment: its folder, and its file or
    // null. When both are removed is the hook's business; the page hasn't taken the file yet.
    virtual void NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) = 0;

protected:
    ~BrowserContext() = default;
};

static_assert(sizeof(BrowserContext) == sizeof(void*), "an interface is one table pointer");

} // namespace obcontract

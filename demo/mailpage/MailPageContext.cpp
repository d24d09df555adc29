#include "demo/mailpage/MailPageContext.h"

#include "ObLib/Src/Win32/ComResources.h"
#include "contracts/ExchangeBlock.h"

namespace mailpage {
BOOL MailPageContext::CallGetOpenFileName(OPENFILENAMEW* request) {
    browserDialogAsked_ = true;
    return options_.fallbackDialog ? GetOpenFileNameW(request) : FALSE;
}

HRESULT MailPageContext::CallShow(IFileDialog* dialog, HWND owner) {
    browserDialogAsked_ = true;
    return options_.fallbackDialog ? dialog->Show(owner) : obcontract::kCancelled;
}

HRESULT MailPageContext::CallGetResult(IFileDialog* dialog, IShellItem** out) {
    return dialog->GetResult(out);
}

HRESULT MailPageContext::CallGetResults(IFileDialog* dialog, IShellItemArray** out) {
    ObLib::ComPtr<IFileOpenDialog> open;
    const HRESULT found =
        dialog->QueryInterface(IID_IFileOpenDialog, reinterpret_cast<void**>(open.Put()));
    return FAILED(found) ? found : open->GetResults(out);
}

void MailPageContext::InsertLinkText(const wchar_t* text) { links_.emplace_back(text); }

void MailPageContext::NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) {
    cleanup_.push_back({folder, file ? file : L""});
}

} // namespace mailpage

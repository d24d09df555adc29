// The hook's side of the contract: what the library may ask of the browser, and what it reports to
// it.
#pragma once

#include <string>
#include <vector>

#include "contracts/BrowserContext.h"
#include "demo/mailpage/Options.h"

namespace mailpage {

inline constexpr wchar_t kMailWindowClass[] = L"MailPageWindow";

// Temporary output of the library that the hook removes after the page has sent the file.
struct CleanupNote {
    std::wstring folder;
    std::wstring file; // empty when there is none
};

// Lives for one request, on the browser's thread.
class MailPageContext final : public obcontract::BrowserContext {
public:
    explicit MailPageContext(const Options& options) : options_(options) {}

    BOOL CallGetOpenFileName(OPENFILENAMEW* request) override;
    HRESULT CallShow(IFileDialog* dialog, HWND owner) override;
    HRESULT CallGetResult(IFileDialog* dialog, IShellItem** out) override;
    HRESULT CallGetResults(IFileDialog* dialog, IShellItemArray** out) override;
    const wchar_t* GetPageUrl() override { return options_.url.c_str(); }
    const wchar_t* const* GetBrowserWindowClasses() override { return windowClasses_; }
    std::int32_t GetBrowserWindowClassCount() override { return 1; }
    std::uint8_t IsPickerWanted() override { return 1; }
    void InsertLinkText(const wchar_t* text) override;
    void NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) override;

    const std::vector<std::wstring>& Links() const { return links_; }
    const std::vector<CleanupNote>& Cleanup() const { return cleanup_; }
    bool BrowserDialogAsked() const { return browserDialogAsked_; }

private:
    const Options& options_;
    const wchar_t* windowClasses_[1] = {kMailWindowClass};
    std::vector<std::wstring> links_;
    std::vector<CleanupNote> cleanup_;
    bool browserDialogAsked_ = false;
};

} // namespace mailpage

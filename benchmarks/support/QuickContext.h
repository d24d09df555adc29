// A hook's context whose own dialogs return at once.
#pragma once

#include <string>

#include "contracts/BrowserContext.h"

namespace bench {

class QuickContext final : public obcontract::BrowserContext {
public:
    explicit QuickContext(std::wstring url) : url_(std::move(url)) {}

    // How many of the browser's own dialogs were asked for so far.
    [[nodiscard]] std::uint64_t Asked() const noexcept { return asked_; }

    BOOL CallGetOpenFileName(OPENFILENAMEW*) override {
        ++asked_;
        return TRUE;
    }
    HRESULT CallShow(IFileDialog*, HWND) override {
        ++asked_;
        return S_OK;
    }
    HRESULT CallGetResult(IFileDialog*, IShellItem**) override {
        ++asked_;
        return S_OK;
    }
    HRESULT CallGetResults(IFileDialog*, IShellItemArray**) override {
        ++asked_;
        return S_OK;
    }
    const wchar_t* GetPageUrl() override { return url_.c_str(); }
    const wchar_t* const* GetBrowserWindowClasses() override { return nullptr; }
    std::int32_t GetBrowserWindowClassCount() override { return 0; }
    std::uint8_t IsPickerWanted() override { return 1; }
    void InsertLinkText(const wchar_t*) override {}
    void NoteCleanupFiles(const wchar_t*, const wchar_t*) override {}

private:
    std::wstring url_;
    std::uint64_t asked_ = 0;
};

} // namespace bench

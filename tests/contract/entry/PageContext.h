// A hook's context for a page of a mail service that notes what the library asked of it.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "contracts/BrowserContext.h"

namespace obtest {

class PageContext : public obcontract::BrowserContext {
public:
    std::wstring url = L"https://mail.google.com/mail/u/0/#inbox?compose=new";
    std::uint8_t wanted = 1;
    std::vector<const wchar_t*> windowClasses;
    std::vector<std::string> asked; // the browser's own answers that were asked for
    std::vector<std::wstring> links;
    std::vector<std::pair<std::wstring, std::wstring>> cleanup;
    std::function<void()> onBrowserDialog;

    BOOL CallGetOpenFileName(OPENFILENAMEW*) override {
        Ask("CallGetOpenFileName");
        return 9;
    }
    HRESULT CallShow(IFileDialog*, HWND) override {
        Ask("CallShow");
        return 0x00041001;
    }
    HRESULT CallGetResult(IFileDialog*, IShellItem**) override {
        Ask("CallGetResult");
        return 0x00041002;
    }
    HRESULT CallGetResults(IFileDialog*, IShellItemArray**) override {
        Ask("CallGetResults");
        return 0x00041003;
    }
    const wchar_t* GetPageUrl() override { return url.c_str(); }
    const wchar_t* const* GetBrowserWindowClasses() override { return windowClasses.data(); }
    std::int32_t GetBrowserWindowClassCount() override {
        return static_cast<std::int32_t>(windowClasses.size());
    }
    std::uint8_t IsPickerWanted() override { return wanted; }
    void InsertLinkText(const wchar_t* text) override { links.emplace_back(text); }
    void NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) override {
        cleanup.emplace_back(folder, file ? file : L"");
    }

private:
    void Ask(const char* operation) {
        asked.emplace_back(operation);
        if (onBrowserDialog) onBrowserDialog();
    }
};

} // namespace obtest

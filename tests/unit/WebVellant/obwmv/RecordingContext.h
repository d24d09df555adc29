// A fake of the hook's context: it records each call and returns what the test has set.
#pragma once

#include <functional>
#include <stdexcept>
#include <vector>

#include "contracts/BrowserContext.h"
#include "tests/unit/WebVellant/obwmv/RequestFakes.h"

namespace obtest {

class RecordingContext : public obcontract::BrowserContext {
public:
    std::wstring pageUrl = L"https://mail.example/compose";
    std::vector<const wchar_t*> windowClasses;
    bool pickerWanted = true;
    BOOL openFileNameAnswer = 5;
    HRESULT showAnswer = 0x00041234;
    std::string throwsIn; // the name of the operation that throws

    OPENFILENAMEW* askedRequest = nullptr;
    IFileDialog* askedDialog = nullptr;
    HWND askedOwner = nullptr;
    void* askedOut = nullptr;

    BOOL CallGetOpenFileName(OPENFILENAMEW* request) override {
        askedRequest = request;
        if (request) askedOwner = request->hwndOwner;
        Note("CallGetOpenFileName");
        return openFileNameAnswer;
    }
    HRESULT CallShow(IFileDialog* dialog, HWND owner) override {
        askedDialog = dialog;
        askedOwner = owner;
        Note("CallShow");
        return showAnswer;
    }
    HRESULT CallGetResult(IFileDialog* dialog, IShellItem** out) override {
        askedDialog = dialog;
        askedOut = out;
        Note("CallGetResult");
        return 0x00041235;
    }
    HRESULT CallGetResults(IFileDialog* dialog, IShellItemArray** out) override {
        askedDialog = dialog;
        askedOut = out;
        Note("CallGetResults");
        return 0x00041236;
    }
    const wchar_t* GetPageUrl() override {
        Note("GetPageUrl");
        return pageUrl.c_str();
    }
    const wchar_t* const* GetBrowserWindowClasses() override {
        Note("GetBrowserWindowClasses");
        return windowClasses.data();
    }
    std::int32_t GetBrowserWindowClassCount() override {
        Note("GetBrowserWindowClassCount");
        return static_cast<std::int32_t>(windowClasses.size());
    }
    std::uint8_t IsPickerWanted() override {
        Note("IsPickerWanted");
        return pickerWanted;
    }
    void InsertLinkText(const wchar_t*) override { Note("InsertLinkText"); }
    void NoteCleanupFiles(const wchar_t*, const wchar_t*) override { Note("NoteCleanupFiles"); }

private:
    void Note(const std::string& operation) {
        NoteStep(operation);
        if (operation == throwsIn) throw std::runtime_error(operation);
    }
};

} // namespace obtest

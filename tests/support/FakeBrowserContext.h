// A fake of the hook's context: a browser with a mail page. It records each call and returns what
// the test has set. Used on one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "contracts/BrowserContext.h"

namespace obtest {

// The operations of the contract, in the order of their slots.
enum class BrowserCall {
    CallGetOpenFileName,
    CallShow,
    CallGetResult,
    CallGetResults,
    GetPageUrl,
    GetBrowserWindowClasses,
    GetBrowserWindowClassCount,
    IsPickerWanted,
    InsertLinkText,
    NoteCleanupFiles,
};

inline constexpr std::size_t kBrowserCalls = 10;

// The name of the operation, as the contract has it.
const char* NameOf(BrowserCall call);

class FakeBrowserContext final : public obcontract::BrowserContext {
public:
    // What the context returns. The four results of the browser's own dialogs differ from each
    // other and from every result that the library makes itself.
    std::wstring pageUrl = L"https://mail.google.com/mail/u/0/#inbox?compose=new";
    std::vector<const wchar_t*> windowClasses;
    std::uint8_t pickerWanted = 1;
    BOOL openFileNameAnswer = 5;
    HRESULT showAnswer = 0x00041234;
    HRESULT getResultAnswer = 0x00041235;
    HRESULT getResultsAnswer = 0x00041236;

    // Runs within each call: after the call has been counted, before the texts that were passed are
    // read. What it throws, the call throws.
    std::function<void(BrowserCall)> onCall;

    // The operation that throws std::runtime_error, after it has been recorded.
    std::optional<BrowserCall> throwsIn;

    // Off: calls are counted only, so that a benchmark may make millions of them.
    bool keepsCalls = true;

    // The number of calls of one operation, of all operations, and of the four that run the
    // browser's own dialogs and queries.
    [[nodiscard]] std::size_t Count(BrowserCall call) const;
    [[nodiscard]] std::size_t Count() const;
    [[nodiscard]] std::size_t OwnDialogCount() const;

    // The recorded calls in order, without their arguments.
    std::vector<BrowserCall> calls;

    // What the page was handed, one line each in order: "link TEXT", "cleanup [FOLDER] [FILE]" with
    // null for a null file.
    std::vector<std::wstring> delivered;

    // The names of the latest clean-up; the file is absent when it was null.
    std::optional<std::wstring> cleanupFolder;
    std::optional<std::wstring> cleanupFile;

    // The arguments of the latest call that runs a dialog or a query of the browser's own.
    OPENFILENAMEW* askedRequest = nullptr;
    IFileDialog* askedDialog = nullptr;
    HWND askedOwner = nullptr;
    void* askedOut = nullptr;

    // The names of those among the recorded calls that run the browser's own dialogs and queries.
    [[nodiscard]] std::vector<std::string> OwnDialogs() const;

    // True when the library made no other calls than those that read the page's address and hand
    // over link texts and names for clean-up.
    [[nodiscard]] bool OnlyDelivered() const;

    // Forgets everything recorded and counted.
    void Clear();

    BOOL CallGetOpenFileName(OPENFILENAMEW* request) override;
    HRESULT CallShow(IFileDialog* dialog, HWND owner) override;
    HRESULT CallGetResult(IFileDialog* dialog, IShellItem** out) override;
    HRESULT CallGetResults(IFileDialog* dialog, IShellItemArray** out) override;
    const wchar_t* GetPageUrl() override;
    const wchar_t* const* GetBrowserWindowClasses() override;
    std::int32_t GetBrowserWindowClassCount() override;
    std::uint8_t IsPickerWanted() override;
    void InsertLinkText(const wchar_t* text) override;
    void NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) override;

private:
    void Note(BrowserCall call);

    std::array<std::size_t, kBrowserCalls> counts_{};
};

} // namespace obtest

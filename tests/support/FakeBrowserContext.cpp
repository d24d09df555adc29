#include "tests/support/FakeBrowserContext.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace obtest {
namespace {

constexpr std::array<const char*, kBrowserCalls> kNames = {"CallGetOpenFileName",
                                                           "CallShow",
                                                           "CallGetResult",
                                                           "CallGetResults",
                                                           "GetPageUrl",
                                                           "GetBrowserWindowClasses",
                                                           "GetBrowserWindowClassCount",
                                                           "IsPickerWanted",
                                                           "InsertLinkText",
                                                           "NoteCleanupFiles"};

constexpr bool IsOwnDialog(BrowserCall call) { return call <= BrowserCall::CallGetResults; }

} // namespace

const char* NameOf(BrowserCall call) { return kNames[static_cast<std::size_t>(call)]; }

std::size_t FakeBrowserContext::Count(BrowserCall call) const {
    return counts_[static_cast<std::size_t>(call)];
}

std::size_t FakeBrowserContext::Count() const {
    return std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
}

std::size_t FakeBrowserContext::OwnDialogCount() const {
    return Count(BrowserCall::CallGetOpenFileName) + Count(BrowserCall::CallShow) +
           Count(BrowserCall::CallGetResult) + Count(BrowserCall::CallGetResults);
}

std::vector<std::string> FakeBrowserContext::OwnDialogs() const {
    std::vector<std::string> names;
    for (const BrowserCall call : calls) {
        if (IsOwnDialog(call)) names.emplace_back(NameOf(call));
    }
    return names;
}

bool FakeBrowserContext::OnlyDelivered() const {
    return Count() == Count(BrowserCall::GetPageUrl) + Count(BrowserCall::InsertLinkText) +
                          Count(BrowserCall::NoteCleanupFiles);
}

void FakeBrowserContext::Clear() {
    calls.clear();
    delivered.clear();
    cleanupFolder.reset();
    cleanupFile.reset();
    counts_ = {};
}

void FakeBrowserContext::Note(BrowserCall call) {
    ++counts_[static_cast<std::size_t>(call)];
    if (keepsCalls) calls.push_back(call);
    if (onCall) onCall(call);
    if (call == throwsIn) throw std::runtime_error(NameOf(call));
}

BOOL FakeBrowserContext::CallGetOpenFileName(OPENFILENAMEW* request) {
    askedRequest = request;
    if (request) askedOwner = request->hwndOwner;
    Note(BrowserCall::CallGetOpenFileName);
    return openFileNameAnswer;
}

HRESULT FakeBrowserContext::CallShow(IFileDialog* dialog, HWND owner) {
    askedDialog = dialog;
    askedOwner = owner;
    Note(BrowserCall::CallShow);
    return showAnswer;
}

HRESULT FakeBrowserContext::CallGetResult(IFileDialog* dialog, IShellItem** out) {
    askedDialog = dialog;
    askedOut = out;
    Note(BrowserCall::CallGetResult);
    return getResultAnswer;
}

HRESULT FakeBrowserContext::CallGetResults(IFileDialog* dialog, IShellItemArray** out) {
    askedDialog = dialog;
    askedOut = out;
    Note(BrowserCall::CallGetResults);
    return getResultsAnswer;
}

const wchar_t* FakeBrowserContext::GetPageUrl() {
    Note(BrowserCall::GetPageUrl);
    return pageUrl.c_str();
}

const wchar_t* const* FakeBrowserContext::GetBrowserWindowClasses() {
    Note(BrowserCall::GetBrowserWindowClasses);
    return windowClasses.data();
}

std::int32_t FakeBrowserContext::GetBrowserWindowClassCount() {
    Note(BrowserCall::GetBrowserWindowClassCount);
    return static_cast<std::int32_t>(windowClasses.size());
}

std::uint8_t FakeBrowserContext::IsPickerWanted() {
    Note(BrowserCall::IsPickerWanted);
    return pickerWanted;
}

void FakeBrowserContext::InsertLinkText(const wchar_t* text) {
    Note(BrowserCall::InsertLinkText);
    delivered.push_back(std::wstring(L"link ") + text);
}

void FakeBrowserContext::NoteCleanupFiles(const wchar_t* folder, const wchar_t* file) {
    Note(BrowserCall::NoteCleanupFiles);
    const std::wstring fileText = file ? std::wstring(L"[") + file + L"]" : L"null";
    delivered.push_back(std::wstring(L"cleanup [") + folder + L"] " + fileText);
    cleanupFolder = folder;
    cleanupFile = file ? std::optional<std::wstring>(file) : std::nullopt;
}

} // namespace obtest

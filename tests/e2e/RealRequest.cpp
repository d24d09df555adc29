#include "tests/e2e/RealRequest.h"

#include <algorithm>

#include "tests/support/PasswordUiDriver.h"
#include "tests/support/ProductRegistry.h"

using obcontract::BrowserContext;

namespace obtest {
namespace {

constexpr wchar_t kLibrary[] = L"C:\\app\\obwmcore64.dll";
constexpr DWORD kRequestBuffer = 4096;  // wide characters, as browsers give
constexpr DWORD kUiDriverLimit = 10000; // milliseconds

using OpenExport = BOOL(OPENFILENAMEW*, BrowserContext*);
using ShowExport = HRESULT(IFileDialog*, HWND, BrowserContext*);
using ResultExport = HRESULT(IFileDialog*, IShellItem**, BrowserContext*);
using ResultsExport = HRESULT(IFileDialog*, IShellItemArray**, BrowserContext*);

std::wstring PathOf(IShellItem* item) {
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Put()))) return {};
    return path.Get();
}

// A multi-string: items up to the first empty one.
std::vector<std::wstring> Items(const wchar_t* list) {
    std::vector<std::wstring> items;
    for (; *list; list += items.back().size() + 1) items.emplace_back(list);
    return items;
}

void Choose(const OpenPicker& picker, const std::wstring& text) {
    ASSERT_TRUE(picker.Click(text)) << "the choice can't be clicked";
    ASSERT_TRUE(WaitUntil([&] { return picker.IsChecked(text); }, kUiDriverLimit));
}

} // namespace

void RealRequest::SetUp() {
    ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ClearProductRegistry();
    library_.Reset(LoadLibraryW(kLibrary));
    ASSERT_TRUE(library_) << "error " << GetLastError();
    owner_.Reset(CreateWindowExW(0, L"Static", L"browser", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20,
                                 640, 480, nullptr, nullptr, nullptr, nullptr));
    ASSERT_TRUE(owner_);
    tempBefore_ = ListTree(TempFolder());
}

void RealRequest::TearDown() {
    EXPECT_TRUE(IsWindowEnabled(owner_.Get())) << "the browser's window stays disabled";
    dialog_.Reset();
    owner_.Reset();
    library_.Reset();
    CoUninitialize();
}

template <class Export>
Export* RealRequest::Find(const char* name) const {
    const FARPROC found = GetProcAddress(library_.Get(), name);
    EXPECT_TRUE(found) << name << " isn't exported";
    return reinterpret_cast<Export*>(reinterpret_cast<void*>(found));
}

void RealRequest::AttachEverySize() {
    SetValue(HKEY_CURRENT_USER, kQuilletKey, L"SendSetting", L"0");
}

RealRequest::Use RealRequest::Pick(Choice choice, std::vector<std::wstring> paths) const {
    return [text = Text(static_cast<UINT>(choice)), paths](OpenPicker& picker) {
        Choose(picker, text);
        const std::wstring names =
            paths.size() == 1 ? paths.front() : OpenPicker::QuotedNames(paths);
        EXPECT_TRUE(picker.TypeNames(names));
        picker.PressOk();
    };
}

RealRequest::Use RealRequest::PickAndEncrypt(std::vector<std::wstring> paths,
                                             std::wstring password) const {
    return [pick = Pick(Choice::Encrypt, paths), password](OpenPicker& picker) {
        pick(picker);
        const OpenPasswordPrompt prompt = OpenPasswordPrompt::Await();
        ASSERT_TRUE(prompt.Window()) << "no password prompt";
        EXPECT_TRUE(prompt.Type(password, password));
        EXPECT_TRUE(prompt.PressOk());
        EXPECT_TRUE(prompt.WaitUntilClosed());
    };
}

RealRequest::Use RealRequest::PickTooMany(std::vector<std::wstring> paths,
                                          const MessageBoxWatcher& boxes) const {
    return [pick = Pick(Choice::None, paths), &boxes](OpenPicker& picker) {
        pick(picker);
        EXPECT_TRUE(boxes.WaitFor(1));
        EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(picker.Window()) != 0; }));
        EXPECT_TRUE(picker.IsOpen());
        picker.PressCancel();
    };
}

void RealRequest::ExpectCancels() {
    const OpenAnswer answer = AskOpen();
    EXPECT_EQ(answer.result, FALSE);
    EXPECT_EQ(answer.given, std::vector<std::wstring>{});
    EXPECT_EQ(answer.ownerAfterwards, Owner());
    EXPECT_EQ(AskShow(), kCancelled);
    EXPECT_EQ(browser_.OwnDialogCount(), 0u);
}

RealRequest::OpenAnswer RealRequest::AskOpen(DWORD flags) {
    std::vector<wchar_t> buffer(kRequestBuffer, L'\0');
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = Owner();
    request.lpstrFilter = L"All files\0*.*\0";
    request.lpstrFile = buffer.data();
    request.nMaxFile = kRequestBuffer;
    request.Flags = flags;
    auto* const ask = Find<OpenExport>("GetOpenFileNameInBrowser");
    if (!ask) return {};
    const BOOL result = ask(&request, &browser_);
    return {result, Items(buffer.data()), request.hwndOwner};
}

HRESULT RealRequest::AskShow(FILEOPENDIALOGOPTIONS options) {
    auto* const ask = Find<ShowExport>("FileOpenDialog_ShowInBrowser");
    if (!ask) return E_FAIL;
    const HRESULT made =
        CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                         reinterpret_cast<void**>(dialog_.Put()));
    if (FAILED(made)) return made;
    dialog_->SetOptions(options);
    return ask(dialog_.Get(), Owner(), &browser_);
}

HRESULT RealRequest::GetResult(std::wstring& path) {
    auto* const ask = Find<ResultExport>("FileOpenDialog_GetResultInBrowser");
    if (!ask) return E_FAIL;
    ObLib::ComPtr<IShellItem> item;
    const HRESULT result = ask(dialog_.Get(), item.Put(), &browser_);
    if (item) path = PathOf(item.Get());
    return result;
}

HRESULT RealRequest::GetResults(std::vector<std::wstring>& paths) {
    auto* const ask = Find<ResultsExport>("FileOpenDialog_GetResultsInBrowser");
    if (!ask) return E_FAIL;
    ObLib::ComPtr<IShellItemArray> items;
    const HRESULT result = ask(dialog_.Get(), items.Put(), &browser_);
    DWORD count = 0;
    if (items) items->GetCount(&count);
    for (DWORD index = 0; index < count; ++index) {
        ObLib::ComPtr<IShellItem> item;
        if (SUCCEEDED(items->GetItemAt(index, item.Put()))) paths.push_back(PathOf(item.Get()));
    }
    return result;
}

std::wstring RealRequest::Text(UINT id) const {
    wchar_t text[512] = {};
    EXPECT_GT(LoadStringW(library_.Get(), id, text, 512), 0) << "no text " << id;
    return text;
}

std::wstring RealRequest::TempFolder() {
    wchar_t given[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, given);
    wchar_t folder[MAX_PATH] = {};
    GetLongPathNameW(given, folder, MAX_PATH);
    std::wstring path = folder;
    if (path.ends_with(L'\\')) path.pop_back();
    return path;
}

std::vector<std::wstring> RealRequest::LeftInTemp() const {
    const std::wstring own = NameOf(files_.Path()) + L"\\";
    std::vector<std::wstring> left;
    for (const std::wstring& item : ListTree(TempFolder())) {
        const bool before = std::ranges::find(tempBefore_, item) != tempBefore_.end();
        if (!before && !item.starts_with(own)) left.push_back(item);
    }
    return left;
}

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\') + 1); }

std::wstring NameOf(const std::wstring& path) { return path.substr(path.rfind(L'\\') + 1); }

} // namespace obtest

#include "tools/pickerdriver/Screen.h"

#include <shlwapi.h>

#include <algorithm>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/WindowKit.h"
#include "tests/support/WindowPicture.h"
#include "tools/pickerdriver/Output.h"

namespace pickerdriver {
namespace {

constexpr int kMessageTextId = 0xFFFF; // of a message box
constexpr DWORD kLookEvery = 20;       // milliseconds

bool IsTextOrButton(HWND child) {
    const std::wstring name = obtest::ClassOf(child);
    return name == L"Static" || name == L"Button";
}

bool IsMessageBox(HWND window) {
    return obtest::IsDialog(window) && GetDlgItem(window, kMessageTextId) &&
           std::ranges::all_of(obtest::Descendants(window), &IsTextOrButton);
}

} // namespace

HWND MessageBoxOnScreen() { return obtest::FindTopWindow(&IsMessageBox); }

std::wstring MessageOf(HWND box) { return obtest::ItemText(box, kMessageTextId); }

void CloseNote() {
    const HWND box = MessageBoxOnScreen();
    if (!box) return;
    Say(L"a message: " + MessageOf(box));
    PostMessageW(box, WM_CLOSE, 0, 0);
    while (IsWindow(box)) Sleep(kLookEvery);
}

void Await(const std::wstring& what, DWORD limit, HANDLE program,
           const std::function<bool()>& condition) {
    const ULONGLONG end = GetTickCount64() + limit;
    while (!condition()) {
        if (const HWND box = MessageBoxOnScreen()) {
            throw Failure{L"a message instead of " + what + L": " + MessageOf(box)};
        }
        if (program && WaitForSingleObject(program, 0) == WAIT_OBJECT_0 && !condition()) {
            throw Failure{L"the program ended before " + what};
        }
        if (GetTickCount64() > end) throw Failure{L"time is up: no " + what};
        Sleep(kLookEvery);
    }
}

std::wstring PlainText(const wchar_t* module, UINT id) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    PathRemoveFileSpecW(path);
    PathAppendW(path, module);
    const ObLib::UniqueModule library(
        LoadLibraryExW(path, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    if (!library) throw Failure{std::wstring(L"no texts: ") + path + L" can't be read"};
    wchar_t text[512] = {};
    LoadStringW(library.Get(), id, text, 512);
    std::wstring plain = text;
    std::erase(plain, L'&');
    return plain;
}

std::wstring PictureName(const Task& task, const wchar_t* suffix) {
    std::wstring path = task.picture;
    return path.insert(std::min(path.rfind(L'.'), path.size()), suffix);
}

void TakePictureOf(HWND window, const Task& task, const wchar_t* suffix) {
    if (task.picture.empty()) return;
    const std::wstring path = PictureName(task, suffix);
    const auto picture = obtest::TakeSettledPicture(window);
    if (!picture) throw Failure{L"the window stays blank: no picture for " + path};
    if (!obtest::WritePng(*picture, path)) throw Failure{path + L" can't be written"};
    Say(L"picture: " + path);
}

HWND DialogWith(int control) {
    struct Search {
        int control;
        HWND found;
    } search{control, nullptr};
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            const bool is = IsWindowVisible(window) && obtest::ClassOf(window) == L"#32770" &&
                            GetDlgItem(window, wanted.control);
            if (is) wanted.found = window;
            return !is;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void PressButtonOf(HWND dialog, int button, const Task& task, HANDLE program,
                   const wchar_t* suffix) {
    TakePictureOf(dialog, task, suffix);
    PostMessageW(GetDlgItem(dialog, button), BM_CLICK, 0, 0);
    Await(L"end of the dialog", task.limit, program, [&] { return !IsWindow(dialog); });
}

} // namespace pickerdriver

#include "tests/support/PasswordUiDriver.h"

#include <array>
#include <cwchar>

#include "tests/support/PickerUiDriver.h"

namespace obtest {
namespace {

bool IsOfClass(HWND window, const wchar_t* wanted) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return std::wcscmp(name, wanted) == 0;
}

bool IsPasswordField(HWND window) {
    return IsOfClass(window, L"Edit") && (GetWindowLongW(window, GWL_STYLE) & ES_PASSWORD) != 0;
}

// In the order of the Tab key; null where there is none.
std::array<HWND, 2> PasswordFields(HWND dialog) {
    std::array<HWND, 2> fields{};
    std::size_t count = 0;
    for (HWND child = GetWindow(dialog, GW_CHILD); child && count < fields.size();
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (IsPasswordField(child)) fields[count++] = child;
    }
    return fields;
}

struct Search {
    DWORD processId;
    HWND found;
};

BOOL CALLBACK OnWindow(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (search.processId != 0 && owner != search.processId) return TRUE;
    if (!IsWindowVisible(window) || !IsOfClass(window, L"#32770")) return TRUE;
    if (!PasswordFields(window)[1]) return TRUE;
    search.found = window;
    return FALSE;
}

void TypeInto(HWND field, const std::wstring& text) {
    for (const wchar_t character : text) PostMessageW(field, WM_CHAR, character, 1);
}

} // namespace

OpenPasswordPrompt OpenPasswordPrompt::Find(DWORD processId) {
    Search search{processId, nullptr};
    EnumWindows(&OnWindow, reinterpret_cast<LPARAM>(&search));
    return OpenPasswordPrompt(search.found);
}

OpenPasswordPrompt OpenPasswordPrompt::Await(DWORD processId, DWORD limit) {
    OpenPasswordPrompt prompt(nullptr);
    OpenPicker::WaitFor([&] { return (prompt = Find(processId)).Window() != nullptr; }, limit);
    return prompt;
}

bool OpenPasswordPrompt::Type(const std::wstring& password, const std::wstring& repetition) const {
    const std::array<HWND, 2> fields = PasswordFields(window_);
    if (!fields[1]) return false;
    TypeInto(fields[0], password);
    TypeInto(fields[1], repetition);
    return true;
}

bool OpenPasswordPrompt::PressOk(DWORD limit) const {
    const HWND button = GetDlgItem(window_, IDOK);
    const bool ready = OpenPicker::WaitFor([&] { return IsWindowEnabled(button) != FALSE; }, limit);
    return ready && PostMessageW(button, BM_CLICK, 0, 0);
}

void OpenPasswordPrompt::PressCancel() const { PostMessageW(window_, WM_COMMAND, IDCANCEL, 0); }

bool OpenPasswordPrompt::WaitUntilClosed(DWORD limit) const {
    return OpenPicker::WaitFor([this] { return !IsWindow(window_) || !IsWindowVisible(window_); },
                               limit);
}

} // namespace obtest

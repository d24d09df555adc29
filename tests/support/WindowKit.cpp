#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

constexpr DWORD kLookEvery = 10;    // milliseconds
constexpr DWORD kReplyLimit = 2000; // milliseconds

BOOL CALLBACK Collect(HWND window, LPARAM windows) {
    reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
    return TRUE;
}

HWND FirstOf(const std::vector<HWND>& windows, const WindowTest& fits) {
    for (const HWND window : windows) {
        if (fits(window)) return window;
    }
    return nullptr;
}

// By message, which reaches the controls of other processes too; false when the thread doesn't
// reply.
bool Ask(HWND window, UINT message, WPARAM first, LPARAM second, DWORD_PTR& answer) {
    return SendMessageTimeoutW(window, message, first, second, SMTO_NORMAL, kReplyLimit, &answer) !=
           0;
}

} // namespace

bool WaitUntil(const std::function<bool()>& condition, DWORD limit) {
    const ULONGLONG end = GetTickCount64() + limit;
    while (!condition()) {
        if (GetTickCount64() > end) return false;
        Sleep(kLookEvery);
    }
    return true;
}

std::vector<HWND> TopWindows(DWORD processId) {
    std::vector<HWND> windows;
    EnumWindows(&Collect, reinterpret_cast<LPARAM>(&windows));
    std::erase_if(windows, [processId](HWND window) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        return !IsWindowVisible(window) || (processId != 0 && owner != processId);
    });
    return windows;
}

HWND FindTopWindow(const WindowTest& fits, DWORD processId) {
    return FirstOf(TopWindows(processId), fits);
}

HWND WaitForTopWindow(const WindowTest& fits, DWORD processId, DWORD limit) {
    HWND window = nullptr;
    WaitUntil([&] { return (window = FindTopWindow(fits, processId)) != nullptr; }, limit);
    return window;
}

std::vector<HWND> Descendants(HWND window) {
    std::vector<HWND> windows;
    EnumChildWindows(window, &Collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND FindDescendant(HWND window, const WindowTest& fits) {
    return FirstOf(Descendants(window), fits);
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

bool IsDialog(HWND window) { return ClassOf(window) == L"#32770"; }

std::wstring TextOf(HWND window) {
    DWORD_PTR length = 0;
    if (!Ask(window, WM_GETTEXTLENGTH, 0, 0, length)) return {};
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), copied);
    text.resize(copied);
    return text;
}

std::wstring ItemText(HWND dialog, int id) { return TextOf(GetDlgItem(dialog, id)); }

void SetText(HWND field, const std::wstring& text) {
    SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void ReplaceText(HWND field, const std::wstring& text) {
    SendMessageW(field, EM_SETSEL, 0, -1);
    SendMessageW(field, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

void TypeCharacters(HWND field, const std::wstring& text) {
    for (const wchar_t character : text) PostMessageW(field, WM_CHAR, character, 1);
}

bool Click(HWND button) { return PostMessageW(button, BM_CLICK, 0, 0) != FALSE; }

bool PressCommand(HWND dialog, int id) {
    return PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0) != FALSE;
}

bool IsOpen(HWND window) { return window && IsWindow(window) && IsWindowVisible(window); }

bool WaitUntilClosed(HWND window, DWORD limit) {
    return WaitUntil([window] { return !IsOpen(window); }, limit);
}

WindowDriver::WindowDriver(std::function<HWND()> find, std::function<void(HWND)> act, DWORD grace,
                           DWORD limit)
    : thread_([this, find = std::move(find), act = std::move(act), grace, limit] {
          HWND window = nullptr;
          saw_ = WaitUntil([&] { return (window = find()) != nullptr; }, limit);
          if (!saw_) return;
          act(window);
          if (grace == kLeaveOpen) return;
          cancelled_ = !WaitUntilClosed(window, grace);
          if (cancelled_) PressCommand(window, IDCANCEL);
      }) {}

void WindowDriver::Join() {
    if (thread_.joinable()) thread_.join();
}

bool WindowDriver::SawWindow() {
    Join();
    return saw_;
}

bool WindowDriver::Done() {
    Join();
    return saw_ && !cancelled_;
}

} // namespace obtest

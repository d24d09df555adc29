#include "tests/unit/services/archive/password/PromptDriver.h"

#include "services/archive/password/PasswordPromptIds.h"

namespace obtest {
namespace {

constexpr DWORD kLimit = 10000; // milliseconds

BOOL CALLBACK TakePrompt(HWND window, LPARAM found) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const bool prompt = process == GetCurrentProcessId() && IsWindowVisible(window) &&
                        GetDlgItem(window, OB_PASSWORD_REPEAT);
    if (!prompt) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

HWND WaitForPrompt() {
    const ULONGLONG end = GetTickCount64() + kLimit;
    HWND found = nullptr;
    while (!found && GetTickCount64() < end) {
        EnumWindows(&TakePrompt, reinterpret_cast<LPARAM>(&found));
        if (!found) Sleep(10);
    }
    return found;
}

} // namespace

void PromptOnScreen::Type(int field, const std::wstring& text) const {
    SendMessageW(Item(field), EM_SETSEL, 0, -1);
    SendMessageW(Item(field), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring PromptOnScreen::Text(int id) const {
    wchar_t text[4096] = L"";
    GetWindowTextW(Item(id), text, 4096);
    return text;
}

PromptDriver::PromptDriver(std::function<void(const PromptOnScreen&)> act)
    : act_(std::move(act)), thread_([this] {
          const HWND dialog = WaitForPrompt();
          if (!dialog) return;
          saw_ = true;
          act_(PromptOnScreen(dialog));
          if (IsWindow(dialog)) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
      }) {}

PromptDriver::~PromptDriver() { thread_.join(); }

} // namespace obtest

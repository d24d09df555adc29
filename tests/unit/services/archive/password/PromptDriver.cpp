#include "tests/unit/services/archive/password/PromptDriver.h"

#include "services/archive/password/PasswordPromptIds.h"

namespace obtest {
namespace {

constexpr DWORD kLimit = 10000; // milliseconds

HWND FindPrompt() {
    return FindTopWindow(
        [](HWND window) { return GetDlgItem(window, OB_PASSWORD_REPEAT) != nullptr; },
        GetCurrentProcessId());
}

} // namespace

void PromptOnScreen::Type(int field, const std::wstring& text) const {
    ReplaceText(Item(field), text);
}

PromptDriver::PromptDriver(std::function<void(const PromptOnScreen&)> act)
    : WindowDriver(
          &FindPrompt, [act = std::move(act)](HWND window) { act(PromptOnScreen(window)); }, 0,
          kLimit) {}

} // namespace obtest

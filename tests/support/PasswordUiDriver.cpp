#include "tests/support/PasswordUiDriver.h"

namespace obtest {
namespace {

// In the order of the Tab key.
std::vector<HWND> PasswordFields(HWND dialog) {
    std::vector<HWND> fields = Descendants(dialog);
    std::erase_if(fields, [](HWND field) {
        return ClassOf(field) != L"Edit" || !(GetWindowLongW(field, GWL_STYLE) & ES_PASSWORD);
    });
    return fields;
}

bool IsPasswordPrompt(HWND window) {
    return IsDialog(window) && PasswordFields(window).size() >= 2;
}

} // namespace

OpenPasswordPrompt OpenPasswordPrompt::Find(DWORD processId) {
    return OpenPasswordPrompt(FindTopWindow(&IsPasswordPrompt, processId));
}

OpenPasswordPrompt OpenPasswordPrompt::Await(DWORD processId, DWORD limit) {
    return OpenPasswordPrompt(WaitForTopWindow(&IsPasswordPrompt, processId, limit));
}

bool OpenPasswordPrompt::Type(const std::wstring& password, const std::wstring& repetition) const {
    const std::vector<HWND> fields = PasswordFields(window_);
    if (fields.size() < 2) return false;
    TypeCharacters(fields[0], password);
    TypeCharacters(fields[1], repetition);
    return true;
}

bool OpenPasswordPrompt::PressOk(DWORD limit) const {
    const HWND button = GetDlgItem(window_, IDOK);
    return WaitUntil([=] { return IsWindowEnabled(button) != FALSE; }, limit) && Click(button);
}

} // namespace obtest

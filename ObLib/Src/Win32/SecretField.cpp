#include "ObLib/Src/Win32/SecretField.h"

#include <cwchar>

namespace ObLib {
namespace {

void ReplaceAll(HWND field, const wchar_t* text, bool keepForUndo) {
    SendMessageW(field, EM_SETSEL, 0, -1);
    SendMessageW(field, EM_REPLACESEL, keepForUndo, reinterpret_cast<LPARAM>(text));
}

// Unit by unit: a field may copy the text that is replaced, and free the copy unwiped.
void OverwriteText(HWND field) {
    const int length = GetWindowTextLengthW(field);
    for (int at = 0; at < length; ++at) {
        SendMessageW(field, EM_SETSEL, static_cast<WPARAM>(at), at + 1);
        SendMessageW(field, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"*"));
    }
}

// Replaces twice: the first call moves the text into the undo memory, the second overwrites that
// memory with the text of the first. WM_SETTEXT would free the memory instead of overwriting it.
void Overwrite(HWND field) {
    OverwriteText(field);
    FieldText stars;
    std::wmemset(stars.data, L'*', kLongestSecret);
    ReplaceAll(field, stars.data, true);
    ReplaceAll(field, stars.data, true);
    ReplaceAll(field, L"", false);
    SendMessageW(field, EM_EMPTYUNDOBUFFER, 0, 0);
}

} // namespace

void PrepareSecretField(HWND field) {
    SendMessageW(field, EM_LIMITTEXT, kLongestSecret, 0);
    Overwrite(field);
}

void ReadSecretField(HWND field, FieldText& text) {
    GetWindowTextW(field, text.data, kLongestSecret + 1);
}

void FillSecretField(HWND field, const wchar_t* text) {
    OverwriteText(field);
    ReplaceAll(field, text, false);
    // Scroll back to the beginning.
    SendMessageW(field, EM_SETSEL, 0, 0);
    SendMessageW(field, EM_SCROLLCARET, 0, 0);
}

void WipeSecretField(HWND field) { Overwrite(field); }

} // namespace ObLib

// The boxes that the product shows: messages to the user and assertions.
#pragma once

#include <windows.h>

#include "OBCore/modules/TextIds.h"

namespace obcore {

inline constexpr wchar_t kMessageCaption[] = L"Ombrix Vellant";

// Shows `text` in a box owned by `window` under the caption of the product; `style` is made of
// MB_ flags. Runs a modal loop on the calling thread.
void ShowMessage(HWND window, const wchar_t* text, UINT style = MB_OK);

// Loads a text of up to 512 characters and shows it in a plain box, or with the warning icon.
void ShowStringBox(HWND window, TextId id);
void ShowStringWarning(HWND window, TextId id);

// Shows the assertion box and returns: the code after a failed check runs on, also in released
// builds. `source` is the name of the source as the product gives it, such as "OBCore\\OBOptions".
void ShowAssertion(const char* expression, const char* source, int line);

// A check of the product layers: the expression's text, source name and line are part of the
// message and are given by hand, so that they stay what support knows.
inline bool Check(bool isTrue, const char* expression, const char* source, int line) {
    if (!isTrue) ShowAssertion(expression, source, line);
    return isTrue;
}

} // namespace obcore

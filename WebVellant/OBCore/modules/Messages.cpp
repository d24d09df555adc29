#include "OBCore/modules/Messages.h"

#include <cstdio>

#include "OBCore/modules/ResourceModule.h"

namespace obcore {

void ShowMessage(HWND window, const wchar_t* text, UINT style) {
    MessageBoxW(window, text, kMessageCaption, style);
}

void ShowStringBox(HWND window, TextId id) { ShowMessage(window, LoadText(id).c_str()); }

void ShowStringWarning(HWND window, TextId id) {
    ShowMessage(window, LoadText(id).c_str(), MB_ICONEXCLAMATION);
}

void ShowAssertion(const char* expression, const char* source, int line) {
    char text[4096];
    std::snprintf(text, sizeof(text), "Pid: %d Tid: %d\nExpr: %s\nFile: %s\nLine: %d",
                  static_cast<int>(GetCurrentProcessId()), static_cast<int>(GetCurrentThreadId()),
                  expression, source, line);
    MessageBoxA(nullptr, text, "Assert Error", MB_ICONEXCLAMATION);
}

} // namespace obcore

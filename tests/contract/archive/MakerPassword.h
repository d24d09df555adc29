// The password that a check passes to the program which makes its archives.
#pragma once

#include <windows.h>

#include <string>

// The environment's OB_PASSWORD as UTF-8; empty when there is none.
inline std::string MakerPassword() {
    wchar_t wide[260] = L"";
    GetEnvironmentVariableW(L"OB_PASSWORD", wide, 260);
    char utf8[780] = "";
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, sizeof utf8, nullptr, nullptr);
    return utf8;
}

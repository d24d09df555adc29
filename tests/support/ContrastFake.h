// The answer to the one question about high contrast, which tests can't have the system give.
#pragma once

#include <windows.h>

namespace obtest {

// What the fake answers. False at the beginning of a program; who sets it sets it back.
inline bool isContrastOn = false;

// For an ImportPatch of SystemParametersInfoW; all other questions go to the system.
inline BOOL WINAPI ParametersWithContrast(UINT action, UINT size, PVOID data, UINT flags) {
    static const auto real =
        reinterpret_cast<decltype(&SystemParametersInfoW)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32.dll"), "SystemParametersInfoW")));
    if (action != SPI_GETHIGHCONTRAST) return real(action, size, data, flags);
    static_cast<HIGHCONTRASTW*>(data)->dwFlags = isContrastOn ? HCF_HIGHCONTRASTON : 0;
    return TRUE;
}

} // namespace obtest

// The browsers of this machine: which are installed, for how many bits, and whether the product's
// extension can be added to them. Any thread. Functions throw std::bad_alloc.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLib/Src/Win32/RegistryView.h"

namespace obcore {

inline constexpr wchar_t kChrome[] = L"chrome.exe";
inline constexpr wchar_t kEdge[] = L"msedge.exe";
inline constexpr wchar_t kFirefox[] = L"firefox.exe";

// Whether the machine's App Paths name the executable in this view (Bits32 or Bits64) and the file
// is a program of that many bits. A file that isn't there, is damaged or is no program is no
// browser.
bool IsBrowserInstalled(const wchar_t* executable, ObLib::RegistryView view);

// The program's version; zeros for a file without one.
struct FirefoxInfo {
    bool found = false;
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
};
FirefoxInfo GetFirefoxInfo(ObLib::RegistryView view);

struct InstalledBrowsers {
    bool chrome = false;
    bool edge = false;
    bool firefox = false;
    bool firefoxTakesExtension = false; // counts only for one that was found
};

// In both views; in the 32-bit view alone on a system of 32 bits.
InstalledBrowsers FindBrowsers();

} // namespace obcore

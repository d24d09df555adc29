#include "services/providers/suite/InstalledSuite.h"

#include <windows.h>

#include "services/providers/suite/RegistryText.h"
#include "services/providers/suite/TrustedProgram.h"

namespace providers {
namespace {

struct Registered {
    const wchar_t* key;
    const wchar_t* rest; // what follows the value's text
};

// Only what an administrator can write: not the user's part of the registry.
constexpr Registered kPlaces[] = {
    {L"SOFTWARE\\LibreOffice\\UNO\\InstallPath", L"\\soffice.exe"},
    {L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\soffice.exe", L""},
};

} // namespace

std::wstring InstalledSuite() {
    for (const Registered& place : kPlaces) {
        for (const auto view : {ObLib::RegistryView::Bits64, ObLib::RegistryView::Bits32}) {
            const std::wstring text = RegistryText(HKEY_LOCAL_MACHINE, place.key, nullptr, view);
            const std::wstring program = TrustedProgram(text + place.rest);
            if (!program.empty()) return program;
        }
    }
    return {};
}

} // namespace providers

#include "OBCore/modules/ThreadLanguage.h"

#include <cstdio>
#include <cwchar>

#include "OBCore/modules/ObTrace.h"

namespace obcore {
namespace {

constexpr ULONG kLanguageCapacity = 10; // wide characters: four digits a language, a list's ends

} // namespace

LANGID GetThreadLanguage() {
    wchar_t languages[kLanguageCapacity] = {};
    ULONG count = 0;
    ULONG capacity = kLanguageCapacity;
    if (!GetThreadPreferredUILanguages(MUI_LANGUAGE_ID | MUI_THREAD_LANGUAGES, &count, languages,
                                       &capacity)) {
        return 0;
    }
    return static_cast<LANGID>(std::wcstoul(languages, nullptr, 16));
}

void SetThreadLanguage(LANGID language) {
    wchar_t languages[kLanguageCapacity] = {};
    if (language != 0) _snwprintf(languages, kLanguageCapacity - 2, L"%04x", language);
    if (SetThreadPreferredUILanguages(MUI_LANGUAGE_ID, languages, nullptr)) return;
    ObTrace("SetThreadMUILanguage - %d", language);
    ObTrace("SetThreadMUILanguage LastError - %d", GetLastError());
}

} // namespace obcore

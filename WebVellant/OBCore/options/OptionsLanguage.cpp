#include <windows.h>

#include "OBCore/modules/ObTrace.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/options/SettingsStore.h"

namespace obcore {
namespace {

// Hong Kong has no texts of its own and reads those of Taiwan.
constexpr LANGID kChineseHongKong = 3076;
constexpr LANGID kChineseTaiwan = 1028;

LANGID LanguageOfThread() {
    const LANGID language = GetThreadUILanguage();
    return language == kChineseHongKong ? kChineseTaiwan : language;
}

} // namespace

void OBOptions::LoadLanguage() {
    const auto key = OpenMachineKey(kLanguagesKey);
    if (!key) return;
    ObTrace("load options: SOFTWARE\\Tavi Ren Computing\\Ombrix\\Langs");
    const std::uint32_t installed = NumberOf(ReadValue(key.Get(), L"InstalledUILangID"));
    UILanguage = installed != 0 ? static_cast<LANGID>(installed) : LanguageOfThread();
}

} // namespace obcore

#include "ObLibX/src/dialog/DialogSettings.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "ObLib/Src/ObSystem.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"

namespace ObLibX {
namespace {

constexpr wchar_t kDescriptionName[] = L"DLG_XML";

std::optional<std::string_view> ResourceBytes(HMODULE module, const wchar_t* name,
                                              const wchar_t* type) {
    const HRSRC found = module != nullptr ? FindResourceW(module, name, type) : nullptr;
    const HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return std::string_view(static_cast<const char*>(bytes), SizeofResource(module, found));
}

std::optional<std::string_view> DescriptionBytes() {
    const ObLib::ObXAppGlobals& globals = ObLib::AppGlobals();
    const auto own = ResourceBytes(globals.languageModule, kDescriptionName, RT_HTML);
    return own ? own : ResourceBytes(globals.programModule, kDescriptionName, RT_HTML);
}

} // namespace

DialogSettings& ProcessDialogSettings() {
    static DialogSettings settings;
    return settings;
}

void LoadDialogDefaults() {
    DialogSettings& settings = ProcessDialogSettings();
    if (settings.isTried) return;
    settings.isTried = true;
    const auto bytes = DescriptionBytes();
    if (!bytes) return;
    const ObLib::ObString text(std::string(*bytes).c_str(), ObLib::kCodePageAnsi);
    if (!settings.description.LoadText(text)) return;
    ReadDialogDefaults(settings.description, settings.font, settings.substitution);
}

} // namespace ObLibX

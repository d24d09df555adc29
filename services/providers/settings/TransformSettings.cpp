#include "services/providers/settings/TransformSettings.h"

#include <string_view>
#include <utility>

#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

constexpr wchar_t kShowsReceipt[] = L"ShowReceipt";
constexpr wchar_t kAsksAboutRest[] = L"AskAboutOtherFiles";

// One key a transform, named by its id, so that what is stored for one never concerns another.
std::wstring KeyOf(const std::wstring& key, obcontract::TransformId id) {
    return key + L"\\Transforms\\" + std::to_wstring(static_cast<std::uint32_t>(id));
}

// A switch is stored as "1" or "0"; anything else counts as absent.
bool ReadSwitch(HKEY key, const wchar_t* name, bool& value) {
    wchar_t text[2] = L"";
    DWORD size = sizeof text;
    if (RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) {
        return false;
    }
    const std::wstring_view read = text;
    if (read != L"0" && read != L"1") return false;
    value = read == L"1";
    return true;
}

bool WriteSwitch(HKEY key, const wchar_t* name, bool value) {
    const wchar_t text[] = {value ? L'1' : L'0', L'\0'};
    return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof text) ==
           ERROR_SUCCESS;
}

} // namespace

TransformSettings::TransformSettings(HKEY hive, std::wstring key)
    : hive_(hive), key_(std::move(key)) {}

bool TransformSettings::Has(obcontract::TransformId id) const {
    const auto key = ObLib::OpenRegistryKey(hive_, KeyOf(key_, id).c_str(), KEY_QUERY_VALUE);
    bool value = false;
    return key && ReadSwitch(key.Get(), kShowsReceipt, value);
}

PersonalDataSettings TransformSettings::PersonalData() const {
    PersonalDataSettings settings;
    const auto path = KeyOf(key_, obcontract::TransformId::RemoveInfo);
    const auto key = ObLib::OpenRegistryKey(hive_, path.c_str(), KEY_QUERY_VALUE);
    if (!key) return settings;
    ReadSwitch(key.Get(), kShowsReceipt, settings.showsReceipt);
    ReadSwitch(key.Get(), kAsksAboutRest, settings.asksAboutRest);
    return settings;
}

// The value that Has looks for is written last.
bool TransformSettings::Save(const PersonalDataSettings& settings) const {
    const auto path = KeyOf(key_, obcontract::TransformId::RemoveInfo);
    ObLib::UniqueRegistryKey key;
    if (RegCreateKeyExW(hive_, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Put(),
                        nullptr) != ERROR_SUCCESS) {
        return false;
    }
    return WriteSwitch(key.Get(), kAsksAboutRest, settings.asksAboutRest) &&
           WriteSwitch(key.Get(), kShowsReceipt, settings.showsReceipt);
}

} // namespace providers

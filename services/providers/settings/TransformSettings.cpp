#include "services/providers/settings/TransformSettings.h"

#include <utility>

#include "ObLib/Src/Win32/RegistryText.h"
#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

// Named by the transform's id, so that what is stored for one never concerns another.
std::wstring KeyOf(const std::wstring& key, obcontract::TransformId id) {
    return key + L"\\Transforms\\" + std::to_wstring(static_cast<std::uint32_t>(id));
}

} // namespace

TransformSettings::TransformSettings(HKEY hive, std::wstring key)
    : hive_(hive), key_(std::move(key)) {}

std::optional<std::wstring> TransformSettings::Read(obcontract::TransformId id,
                                                    const wchar_t* name) const {
    const auto key = ObLib::OpenRegistryKey(hive_, KeyOf(key_, id).c_str(), KEY_QUERY_VALUE);
    if (!key) return {};
    std::wstring text;
    if (ObLib::ReadRegistryText(key.Get(), name, kLongestSetting, ObLib::RegistryVariables::Expand,
                                text) != ERROR_SUCCESS) {
        return {};
    }
    return text;
}

bool TransformSettings::Write(obcontract::TransformId id,
                              std::span<const SettingValue> values) const {
    ObLib::UniqueRegistryKey key;
    if (RegCreateKeyExW(hive_, KeyOf(key_, id).c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                        key.Put(), nullptr) != ERROR_SUCCESS) {
        return false;
    }
    for (const SettingValue& value : values) {
        if (ObLib::WriteRegistryText(key.Get(), value.name, value.text) != ERROR_SUCCESS)
            return false;
    }
    return true;
}

std::optional<bool> SwitchOf(const std::optional<std::wstring>& text) {
    if (text == L"1") return true;
    if (text == L"0") return false;
    return {};
}

std::wstring TextOfSwitch(bool value) { return value ? L"1" : L"0"; }

std::optional<std::uint32_t> NumberOf(const std::optional<std::wstring>& text, std::uint32_t least,
                                      std::uint32_t most) {
    constexpr std::size_t kMostDigits = 9; // all limits are below a billion
    if (!text || text->empty() || text->size() > kMostDigits || text->front() == L'0') return {};
    std::uint32_t number = 0;
    for (const wchar_t digit : *text) {
        if (digit < L'0' || digit > L'9') return {};
        number = number * 10 + static_cast<std::uint32_t>(digit - L'0');
    }
    if (number < least || number > most) return {};
    return number;
}

} // namespace providers

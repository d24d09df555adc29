#include "OBCore/options/SettingsStore.h"

#include <cstdlib>
#include <vector>

#include "ObLib/Src/Win32/RegistryText.h"

namespace obcore {
namespace {

constexpr DWORD kFirstReadBytes = 510;

// The text in the first `bytes` bytes, up to the first NUL. A value may be stored without its
// terminator, and half a unit at its end is dropped.
std::wstring TextOf(const wchar_t* units, DWORD bytes) {
    const std::size_t length = wcsnlen(units, bytes / sizeof(wchar_t));
    return std::wstring(units, length);
}

LSTATUS QueryInto(HKEY key, const wchar_t* name, wchar_t* units, DWORD& bytes) {
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(units), &bytes);
}

} // namespace

ObLib::UniqueRegistryKey OpenMachineKey(const wchar_t* path, RegistryView view) {
    return ObLib::OpenRegistryKey(HKEY_LOCAL_MACHINE, path, KEY_READ, view);
}

ObLib::UniqueRegistryKey OpenUserKey(const wchar_t* path) {
    ObLib::UniqueRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, key.Put(), nullptr) != ERROR_SUCCESS) {
        return {};
    }
    return key;
}

std::wstring ReadValue(HKEY key, const wchar_t* name) {
    wchar_t first[kFirstReadBytes / sizeof(wchar_t)];
    DWORD bytes = kFirstReadBytes;
    LSTATUS status = QueryInto(key, name, first, bytes);
    if (status == ERROR_SUCCESS) return TextOf(first, bytes);
    if (status != ERROR_MORE_DATA) return {};

    bytes += sizeof(wchar_t);
    std::vector<wchar_t> larger(bytes / sizeof(wchar_t) + 1);
    status = QueryInto(key, name, larger.data(), bytes);
    return status == ERROR_SUCCESS ? TextOf(larger.data(), bytes) : std::wstring();
}

bool IsUserSwitchOn(const std::wstring& text) { return text != L"0"; }

bool IsPolicySwitchOn(const std::wstring& text) { return text == L"1"; }

std::uint32_t NumberOf(const std::wstring& text) {
    return static_cast<std::uint32_t>(_wtoi(text.c_str()));
}

bool ReadSwitch(HKEY key, const wchar_t* name, bool& field) {
    const std::wstring text = ReadValue(key, name);
    if (text.empty()) return false;
    field = IsUserSwitchOn(text);
    return true;
}

bool ReadNumber(HKEY key, const wchar_t* name, std::uint32_t& field) {
    const std::wstring text = ReadValue(key, name);
    if (text.empty()) return false;
    field = NumberOf(text);
    return true;
}

void WriteValue(HKEY key, const wchar_t* name, const std::wstring& text) {
    ObLib::WriteRegistryText(key, name, text);
}

void WriteSwitch(HKEY key, const wchar_t* name, bool on) {
    WriteValue(key, name, on ? L"1" : L"0");
}

void WriteNumber(HKEY key, const wchar_t* name, std::uint32_t number) {
    WriteValue(key, name, std::to_wstring(static_cast<std::int32_t>(number)));
}

} // namespace obcore

#include "tests/support/ProductRegistry.h"

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {
namespace {

constexpr wchar_t kMakerKey[] = L"SOFTWARE\\Tavi Ren Computing";

REGSAM ViewFlag(int view) { return view == 32 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY; }

ObLib::UniqueRegistryKey OpenForWriting(HKEY root, const std::wstring& key, int view) {
    HKEY opened = nullptr;
    RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | ViewFlag(view), nullptr,
                    &opened, nullptr);
    return ObLib::UniqueRegistryKey(opened);
}

ObLib::UniqueRegistryKey OpenForReading(HKEY root, const std::wstring& key, int view) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ | ViewFlag(view), &opened) != ERROR_SUCCESS) {
        return {};
    }
    return ObLib::UniqueRegistryKey(opened);
}

void DeleteTree(HKEY root, const wchar_t* key, int view) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key, 0, KEY_ALL_ACCESS | ViewFlag(view), &opened) != ERROR_SUCCESS) {
        return;
    }
    const ObLib::UniqueRegistryKey owner(opened);
    RegDeleteTreeW(opened, nullptr);
    RegDeleteKeyExW(root, key, ViewFlag(view), 0);
}

} // namespace

void ClearProductRegistry() {
    for (const int view : {32, 64}) {
        DeleteTree(HKEY_CURRENT_USER, kMakerKey, view);
        DeleteTree(HKEY_LOCAL_MACHINE, kMakerKey, view);
    }
}

void MakeKey(HKEY root, const std::wstring& key, int view) { OpenForWriting(root, key, view); }

bool KeyExists(HKEY root, const std::wstring& key, int view) {
    return static_cast<bool>(OpenForReading(root, key, view));
}

void SetRawValue(HKEY root, const std::wstring& key, const std::wstring& name, DWORD type,
                 const void* data, DWORD size, int view) {
    const auto opened = OpenForWriting(root, key, view);
    RegSetValueExW(opened.Get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), size);
}

void SetValue(HKEY root, const std::wstring& key, const std::wstring& name,
              const std::wstring& value, int view) {
    SetRawValue(root, key, name, REG_SZ, value.c_str(),
                static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)), view);
}

void SetMachinePolicy(const std::wstring& name, const std::wstring& value, int view) {
    SetValue(HKEY_LOCAL_MACHINE, kPolicyKey, name, value, view);
}

void SetMachinePolicyNumber(const std::wstring& name, DWORD value, int view) {
    SetRawValue(HKEY_LOCAL_MACHINE, kPolicyKey, name, REG_DWORD, &value, sizeof value, view);
}

void SetUserValue(const std::wstring& name, const std::wstring& value) {
    SetValue(HKEY_CURRENT_USER, kUserKey, name, value);
}

std::optional<std::wstring> ReadValue(HKEY root, const std::wstring& key, const std::wstring& name,
                                      int view) {
    const auto opened = OpenForReading(root, key, view);
    if (!opened) return std::nullopt;
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(opened.Get(), name.c_str(), nullptr, &type, nullptr, &size) !=
            ERROR_SUCCESS ||
        type != REG_SZ) {
        return std::nullopt;
    }
    std::wstring value(size / sizeof(wchar_t), L'\0');
    RegQueryValueExW(opened.Get(), name.c_str(), nullptr, nullptr,
                     reinterpret_cast<BYTE*>(value.data()), &size);
    if (!value.empty() && value.back() == L'\0') value.pop_back();
    return value;
}

std::optional<std::wstring> ReadUserValue(const std::wstring& name) {
    return ReadValue(HKEY_CURRENT_USER, kUserKey, name);
}

std::vector<std::wstring> ValueNames(HKEY root, const std::wstring& key, int view) {
    std::vector<std::wstring> names;
    const auto opened = OpenForReading(root, key, view);
    if (!opened) return names;
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD length = 256;
        if (RegEnumValueW(opened.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

} // namespace obtest

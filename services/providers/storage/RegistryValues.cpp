#include "services/providers/storage/RegistryValues.h"

#include <limits>
#include <utility>

#include "ObLib/Src/Win32/RegistryText.h"
#include "ObLib/Src/Win32/RegistryView.h"
#include "services/providers/storage/GuidText.h"

namespace providers {

std::optional<std::wstring> ReadText(HKEY key, const wchar_t* name, std::size_t longest) {
    std::wstring text;
    const LSTATUS status =
        ObLib::ReadRegistryText(key, name, longest, ObLib::RegistryVariables::Refuse, text);
    if (status != ERROR_SUCCESS) return {};
    return text;
}

bool WriteText(HKEY key, const wchar_t* name, const std::wstring& text) {
    return ObLib::WriteRegistryText(key, name, text) == ERROR_SUCCESS;
}

std::optional<std::uint64_t> ReadNumber(HKEY key, const wchar_t* name) {
    std::uint64_t number = 0;
    DWORD size = sizeof(number);
    const LSTATUS status =
        RegGetValueW(key, nullptr, name, RRF_RT_REG_QWORD, nullptr, &number, &size);
    if (status != ERROR_SUCCESS) return {};
    return number;
}

bool WriteNumber(HKEY key, const wchar_t* name, std::uint64_t number) {
    return RegSetValueExW(key, name, 0, REG_QWORD, reinterpret_cast<const BYTE*>(&number),
                          sizeof(number)) == ERROR_SUCCESS;
}

std::vector<std::wstring> SubkeyNames(HKEY hive, const std::wstring& path) {
    std::vector<std::wstring> names;
    for (OldKey& key : KeysWrittenBefore(hive, path, std::numeric_limits<std::uint64_t>::max())) {
        names.push_back(std::move(key.name));
    }
    return names;
}

std::vector<OldKey> KeysWrittenBefore(HKEY hive, const std::wstring& path, std::uint64_t time) {
    constexpr DWORD kLongestName = 255; // of any key
    const auto key = ObLib::OpenRegistryKey(hive, path.c_str(), KEY_ENUMERATE_SUB_KEYS);
    if (!key) return {};
    std::vector<OldKey> keys;
    for (DWORD index = 0;; ++index) {
        wchar_t name[kLongestName + 1] = L"";
        DWORD size = kLongestName + 1;
        FILETIME written{};
        if (RegEnumKeyExW(key.Get(), index, name, &size, nullptr, nullptr, nullptr, &written) !=
            ERROR_SUCCESS) {
            return keys;
        }
        const ULARGE_INTEGER since{{written.dwLowDateTime, written.dwHighDateTime}};
        if (since.QuadPart < time) keys.push_back({std::wstring(name, size), since.QuadPart});
    }
}

std::vector<std::wstring> UnfinishedKeys(HKEY hive, const std::wstring& path,
                                         const wchar_t* lastWritten, std::uint64_t time) {
    std::vector<std::wstring> names;
    for (OldKey& found : KeysWrittenBefore(hive, path, time)) {
        if (!IsGuidText(found.name)) continue;
        const auto key =
            ObLib::OpenRegistryKey(hive, (path + L'\\' + found.name).c_str(), KEY_QUERY_VALUE);
        const bool lacksIt = key && RegQueryValueExW(key.Get(), lastWritten, nullptr, nullptr,
                                                     nullptr, nullptr) == ERROR_FILE_NOT_FOUND;
        if (lacksIt) names.push_back(std::move(found.name));
    }
    return names;
}

void RemoveUnfinishedKeys(HKEY hive, const std::wstring& path, const wchar_t* lastWritten,
                          std::uint64_t time) {
    for (const std::wstring& name : UnfinishedKeys(hive, path, lastWritten, time)) {
        RemoveKey(hive, path, name);
    }
}

ObLib::UniqueRegistryKey MakeNewKey(HKEY hive, const std::wstring& path) {
    ObLib::UniqueRegistryKey key;
    DWORD made = 0;
    const LSTATUS status = RegCreateKeyExW(hive, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                           nullptr, key.Put(), &made);
    if (status != ERROR_SUCCESS || made != REG_CREATED_NEW_KEY) key.Reset();
    return key;
}

bool RemoveKey(HKEY hive, const std::wstring& path, const std::wstring& name) {
    constexpr REGSAM kAccess = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;
    const auto parent = ObLib::OpenRegistryKey(hive, path.c_str(), kAccess);
    if (!parent) return true;
    const LSTATUS status = RegDeleteTreeW(parent.Get(), name.c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

} // namespace providers

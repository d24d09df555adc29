// The product's registry keys in the test's own prefix.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace obtest {

inline constexpr wchar_t kPolicyKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies";
inline constexpr wchar_t kLangsKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Langs";
inline constexpr wchar_t kUserKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix";
inline constexpr wchar_t kQuilletKey[] = L"Software\\Tavi Ren Computing\\Common\\Quillet";
inline constexpr wchar_t kDefaultExtKey[] = L"SOFTWARE\\Tavi Ren Computing\\Common\\DefaultExt";

// Deletes everything below the maker's key, for the user and for the machine in both views.
void ClearProductRegistry();

// Makes a key; `view` is 32 or 64.
void MakeKey(HKEY root, const std::wstring& key, int view = 64);
bool KeyExists(HKEY root, const std::wstring& key, int view = 64);

// Writes a text with its NUL, as REG_SZ.
void SetValue(HKEY root, const std::wstring& key, const std::wstring& name,
              const std::wstring& value, int view = 64);
// Writes bytes as they are, with any type.
void SetRawValue(HKEY root, const std::wstring& key, const std::wstring& name, DWORD type,
                 const void* data, DWORD size, int view = 64);

void SetMachinePolicy(const std::wstring& name, const std::wstring& value, int view = 64);
// The same as REG_DWORD.
void SetMachinePolicyNumber(const std::wstring& name, DWORD value, int view = 64);
void SetUserValue(const std::wstring& name, const std::wstring& value);

// The text of a REG_SZ value, or nothing when it is absent or of another type.
std::optional<std::wstring> ReadValue(HKEY root, const std::wstring& key, const std::wstring& name,
                                      int view = 64);
std::optional<std::wstring> ReadUserValue(const std::wstring& name);

// Names of all values of a key, in the order of the registry.
std::vector<std::wstring> ValueNames(HKEY root, const std::wstring& key, int view = 64);

} // namespace obtest

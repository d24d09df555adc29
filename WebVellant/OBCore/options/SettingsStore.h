// The registry as the settings store: the keys, and values that are texts throughout.
//
// Switches are "1" and "0", numbers are decimal. An absent value and an empty one are the same.
// Nothing here reports a failure: a key that doesn't open is an empty owner, a value that can't be
// read is empty, a value that can't be written isn't.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/Policies.h"

namespace obcore {

inline constexpr wchar_t kLanguagesKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Langs";
inline constexpr wchar_t kUserKey[] = L"SOFTWARE\\Tavi Ren Computing\\Ombrix\\Ombrix";
inline constexpr wchar_t kQuilletKey[] = L"Software\\Tavi Ren Computing\\Common\\Quillet";
inline constexpr wchar_t kDefaultExtKey[] = L"SOFTWARE\\Tavi Ren Computing\\Common\\DefaultExt";

using obcontract::kPolicyKey;
using ObLib::RegistryView;

// Opens a key of the machine for reading.
ObLib::UniqueRegistryKey OpenMachineKey(const wchar_t* path,
                                        RegistryView view = RegistryView::Plain);

// Opens a key of the user with all access and creates it if it isn't there.
ObLib::UniqueRegistryKey OpenUserKey(const wchar_t* path);

// The value's text up to its first NUL. The type isn't looked at and a terminator isn't needed.
std::wstring ReadValue(HKEY key, const wchar_t* name);

// On unless it is "0": the sense of a user's value, which has to be there.
bool IsUserSwitchOn(const std::wstring& text);

// On only if it is "1": the sense of a policy.
bool IsPolicySwitchOn(const std::wstring& text);

// The leading decimal number, 0 if there is none. "-1" is 0xFFFFFFFF.
std::uint32_t NumberOf(const std::wstring& text);

// Reads for fields that keep their default when the value is absent; true when it was there.
bool ReadSwitch(HKEY key, const wchar_t* name, bool& field);
bool ReadNumber(HKEY key, const wchar_t* name, std::uint32_t& field);

void WriteValue(HKEY key, const wchar_t* name, const std::wstring& text);
void WriteSwitch(HKEY key, const wchar_t* name, bool on);
void WriteNumber(HKEY key, const wchar_t* name, std::uint32_t number); // 0xFFFFFFFF is "-1"

} // namespace obcore

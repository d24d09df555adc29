// Values and keys below the manager's registry key.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

// A REG_SZ of at most `longest` characters. Nothing for a longer one and for another type.
std::optional<std::wstring> ReadText(HKEY key, const wchar_t* name, std::size_t longest);
bool WriteText(HKEY key, const wchar_t* name, const std::wstring& text);

// A REG_QWORD. Nothing for another type.
std::optional<std::uint64_t> ReadNumber(HKEY key, const wchar_t* name);
bool WriteNumber(HKEY key, const wchar_t* name, std::uint64_t number);

// Names of all keys below one, also of those that this module didn't make. None when it can't be
// opened.
std::vector<std::wstring> SubkeyNames(HKEY hive, const std::wstring& path);

// A key, and when it was last written, as TimeNow counts.
struct OldKey {
    std::wstring name;
    std::uint64_t written = 0;
};

// Those of all keys below one that were last written before `time`.
std::vector<OldKey> KeysWrittenBefore(HKEY hive, const std::wstring& path, std::uint64_t time);

// The names of the keys below one that are the texts of GUIDs, lack the value `lastWritten`, which
// their maker writes last, and were last written before `time`: nobody is going to finish them.
std::vector<std::wstring> UnfinishedKeys(HKEY hive, const std::wstring& path,
                                         const wchar_t* lastWritten, std::uint64_t time);
void RemoveUnfinishedKeys(HKEY hive, const std::wstring& path, const wchar_t* lastWritten,
                          std::uint64_t time);

// Makes a key for writing. Empty when it can't be made or is there already.
ObLib::UniqueRegistryKey MakeNewKey(HKEY hive, const std::wstring& path);

// Removes `name` below `path` with all that is below it. True when it isn't there afterwards.
bool RemoveKey(HKEY hive, const std::wstring& path, const std::wstring& name);

} // namespace providers

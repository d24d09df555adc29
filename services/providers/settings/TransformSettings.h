// What the user chose for the transforms, below the manager's key: one key a transform, with texts
// as values. What the values of a transform mean is in its own file.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "contracts/ProviderManager.h"

namespace providers {

inline constexpr std::size_t kLongestSetting = 1000; // characters

struct SettingValue {
    const wchar_t* name;
    std::wstring text;
};

// Opens the key for each access and keeps nothing open in between.
class TransformSettings {
public:
    // The hive and key that Init was given.
    TransformSettings(HKEY hive, std::wstring key);

    // Nothing where there is no value of this name, or one that isn't a text of this module's:
    // those have at most kLongestSetting characters. Throws std::bad_alloc.
    std::optional<std::wstring> Read(obcontract::TransformId id, const wchar_t* name) const;

    // Writes the values in their order. False when one can't be written; those before it stay.
    bool Write(obcontract::TransformId id, std::span<const SettingValue> values) const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring key_;
};

// The row of a table whose `word` is stored; null when none is.
template <class Row, std::size_t Count>
const Row* RowByWord(const Row (&rows)[Count], const std::optional<std::wstring>& word) {
    for (const Row& row : rows) {
        if (word == row.word) return &row;
    }
    return nullptr;
}

// A switch is stored as "1" or "0"; nothing for another text.
std::optional<bool> SwitchOf(const std::optional<std::wstring>& text);
std::wstring TextOfSwitch(bool value);

// A number is stored as decimal digits without zeros before them; nothing for another text and for
// a number outside the limits.
std::optional<std::uint32_t> NumberOf(const std::optional<std::wstring>& text, std::uint32_t least,
                                      std::uint32_t most);

} // namespace providers

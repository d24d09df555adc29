// What the user chose for a transform, below the manager's key.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "contracts/ProviderManager.h"

namespace providers {

// How personal data is removed (id 51).
struct PersonalDataSettings {
    bool showsReceipt = true;  // the user sees what was removed before the files are attached
    bool asksAboutRest = true; // for files that can't be cleaned; otherwise nothing is attached
    bool operator==(const PersonalDataSettings&) const = default;
};

// Opens the key for each access and keeps nothing open in between. All values are texts.
class TransformSettings {
public:
    // The hive and key that Init was given.
    TransformSettings(HKEY hive, std::wstring key);

    // Whether settings were stored for the transform, so that nobody has to be asked.
    bool Has(obcontract::TransformId id) const;

    // The defaults where a value is missing or isn't one that is stored here.
    PersonalDataSettings PersonalData() const;

    // False when a value can't be written. The values that were written before it stay, and Has is
    // as it was.
    bool Save(const PersonalDataSettings& settings) const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring key_;
};

} // namespace providers

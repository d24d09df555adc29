// How personal data is removed (id 51).
#pragma once

#include "services/providers/settings/TransformSettings.h"

namespace providers {

struct PersonalDataSettings {
    bool showsReceipt = true;  // the user sees what was removed before the files are attached
    bool asksAboutRest = true; // for files that can't be cleaned; otherwise nothing is attached
    bool operator==(const PersonalDataSettings&) const = default;

    // Whether settings were stored, so that nobody has to be asked.
    static bool AreStored(const TransformSettings& stored);
    // The defaults where a value is missing or isn't one that is stored here.
    static PersonalDataSettings Load(const TransformSettings& stored);
    // False when a value can't be written; AreStored is then as it was.
    bool Save(const TransformSettings& stored) const;
};

} // namespace providers

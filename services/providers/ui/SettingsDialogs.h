// The settings dialogs of the transforms: one table.
#pragma once

#include <windows.h>

#include "services/providers/settings/TransformSettings.h"

namespace providers {

struct SettingsRow {
    obcontract::TransformId id;
    // Whether settings were stored, so that nobody has to be asked.
    bool (*areStored)(const TransformSettings& stored);
    // Shows the settings and stores what the user chose. False when the user cancels, which stores
    // nothing, and, after a sentence, when they can't be stored. On the thread of the owner.
    bool (*change)(const TransformSettings& stored, HWND owner);
};

// Null for a transform without settings.
const SettingsRow* SettingsOf(obcontract::TransformId id) noexcept;

} // namespace providers

// Loading and saving the switches of the automatic transforms.
#pragma once

#include "OBCore/options/OBOptions.h"

namespace obcore {

// Reads all eight from the user's key. A value that is absent leaves its option alone. One that is
// there turns its option on only if it isn't "0", the extra file is beside this library, and the
// record's provider manager is set and supports the transform.
void LoadTransformOptions(HKEY userKey, OBOptions& options);

void SaveTransformOptions(HKEY userKey, const OBOptions& options);

} // namespace obcore

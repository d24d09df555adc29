// The file name of the zip that goes to the page.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// The date or time that is appended to a zip's name, from the local time; empty for None and for a
// value outside the list. Also feeds the preview of the settings.
std::wstring MakeNameToken(NameAppendKind kind);

namespace CompressUtils {

// The zip's name without its folder. False when there is nothing to name. A single path of more
// than 300 characters that has to give its own name ends the process.
bool BuildAttachmentName(const OBAttachJob& job, std::wstring& name);

} // namespace CompressUtils
} // namespace obcore

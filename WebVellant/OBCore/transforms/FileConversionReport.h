// The usage event of the transforms.
#pragma once

#include "OBCore/options/OBOptions.h"

namespace obcore {

// Sends "feature.file-conversion" with the words of all transforms that the options name; nothing
// when they name none. On the host's dialog thread. Without the archive service the event is
// silently not sent.
void ReportFileConversion(const OBOptions& options);

} // namespace obcore

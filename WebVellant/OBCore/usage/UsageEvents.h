// Usage events: one feature name and one text of key and value pairs for each send of a file.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// All run on the host's dialog thread. Without the archive service an event is silently not sent;
// no run ever fails for it. A text that doesn't fit 260 characters ends the process.

// Sends "feature.file-send" by the flags, and "feature.email-share" when `source` isn't empty.
void ReportFileSend(const UsageFlags& flags, const std::wstring& source);

// ReportFileSend with the job's flags and the browser's short name, taken from BrowserImagePath.
void ReportUsage(const OBAttachJob& job);

// Sends "feature.cloud" with a provider's display name.
void ReportCloudUse(const std::wstring& displayName);

} // namespace obcore

// The text that goes into the mail after an upload: for each file its link and what the receiver
// reads beside it, separated by single pipes.
#pragma once

#include <cstdint>
#include <string>

#include "contracts/ProviderManager.h"

namespace obcore {

// Replaces `linkText` by "0" and a group for each item of `list`: a blank, the item's name, its
// link, and the texts of AppendShareTail. With `days` not negative each item is put on the
// manager's schedule of deletions; the group of one that can't be is written without an expiry.
// A pipe within a field isn't escaped. `list` has the links already; on the dialog's thread.
void FormatShareText(obcontract::DownloadList* list, const std::wstring& displayName,
                     std::int32_t days, std::wstring& linkText);

// Appends a group's six texts: from which provider the file comes, what to do with the link, when
// it expires (`days` negative: not at all), and the message to the user between its two markers.
void AppendShareTail(std::wstring& text, const std::wstring& displayName, std::int32_t days);

} // namespace obcore

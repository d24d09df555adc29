// The text that goes into the mail after a pick: the names of the files and of their providers.
#pragma once

#include <string>

#include "contracts/ProviderManager.h"

namespace obcore {

// Replaces `linkText` by the names of the picked items, in the order of their UTF-16 code units, a
// sentence, and for each name the provider that has the file. Items of one name are one entry, with
// the provider of the last of them. A pipe within a name isn't escaped.
void FormatPickedText(obcontract::ProviderManagerHandle manager, obcontract::DownloadList* list,
                      std::wstring& linkText);

} // namespace obcore

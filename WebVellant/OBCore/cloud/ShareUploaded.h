// Share links for what an upload has put into an account.
#pragma once

#include <cstdint>
#include <string>

#include "contracts/ProviderManager.h"

namespace obcore {

// Asks the provider to share every item of `uploaded` and fills `linkText` with the text for the
// mail. `days`: after how many the files are deleted, negative for never. When the provider can't
// share, which it reports to the user itself, `linkText` stays as it is and the files stay in the
// account. On the dialog's thread.
void ShareUploaded(obcontract::CloudProvider* provider, obcontract::UploadList* uploaded,
                   std::wstring& linkText, std::int32_t days);

} // namespace obcore

// One sentence for each way in which a zip can fail.
#pragma once

#include <windows.h>

#include <string>

#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// The sentence for a failure, with the name of the file that it concerns where it concerns one.
// Empty for a zip that stands and for one that the user cancelled: nobody needs to be told.
std::wstring FailureSentence(ZipResult result, const std::wstring& failedFile);

// Shows the sentence, if there is one, and returns when the user has answered. `owner` may be null
// or gone. What becomes of the attachment is said by the caller of the service, not here.
void TellFailure(HWND owner, ZipResult result, const std::wstring& failedFile);

} // namespace obarchive

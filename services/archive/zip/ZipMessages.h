// One sentence for each way in which a zip can fail.
#pragma once

#include <windows.h>

#include <string>

#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// The sentence for a failure, with the name of the file that it concerns where it concerns one.
// Empty for a complete zip and for one that the user cancelled: neither needs a message.
std::wstring FailureSentence(ZipResult result, const std::wstring& failedFile);

// Shows the sentence, if there is one, and returns when the user has answered. `owner` may be null
// or gone. The caller of the service shows what becomes of the attachment.
void TellFailure(HWND owner, ZipResult result, const std::wstring& failedFile);

} // namespace obarchive

// What the mail page does with files: its report, sending, and removing what was temporary.
#pragma once

#include <string>
#include <vector>

#include "demo/mailpage/Attach.h"

namespace mailpage {

// Writes the answer as UTF-8 lines; the file appears complete. A line break in a link text is
// written as \n. False when the file can't be written.
//
//   answer=1                       path=C:\...\mail.zip           link=https://...
//   browser-dialog=yes             cleanup-folder=C:\...          cleanup-file=C:\...
bool WriteAnswer(const std::wstring& file, const AttachAnswer& answer);

// Copies the attachments into the folder, which is made if it isn't there. False when one failed.
bool CopyToOutbox(const std::wstring& outbox, const std::vector<std::wstring>& attachments);

// Removes what the library noted. Only below the temporary folder: a page's own files stay.
void RemoveTemporary(const CleanupNote& note);

// The name after the last backslash.
std::wstring FileName(const std::wstring& path);

// "12 KB", or nothing when the file isn't there.
std::wstring FileSizeText(const std::wstring& path);

} // namespace mailpage

// Puts PDFs one after the other into one file.
#pragma once

#include <span>
#include <string>

#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"

namespace transforms::documents {

struct PdfPart {
    std::string title; // of its bookmark, UTF-8
    personal::Bytes file;
};

struct CombinedPdf {
    // Cleaned when `bytes` is the whole new file, otherwise why `refused` can't be a part of one:
    // Damaged, Encrypted, or Signed, as a signature doesn't outlive its file.
    CleanOutcome outcome = CleanOutcome::Damaged;
    personal::OwnedBytes bytes;
    std::size_t refused = 0; // a number in the list of parts
};

// Pages in the order of the parts. Each part has a bookmark of its title with its own bookmarks
// below. Links and bookmarks lead to the same pages as before; a form field whose name another part
// has too gets another one; layers are shown or hidden as before. What belongs to a file as a whole
// isn't taken over: its information, scripts, tags, page labels and attached files. Equal parts
// give equal bytes. At least one part; throws std::bad_alloc alone.
CombinedPdf CombinePdfs(std::span<const PdfPart> parts);

} // namespace transforms::documents

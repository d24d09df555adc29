// A PDF that is read from memory and written to memory: how the library is set up for all work on
// PDFs, and what its errors mean.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <qpdf/QPDF.hh>

#include "services/transforms/documents/DocumentControl.h"
#include "services/transforms/documents/PdfRefusal.h"
#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"

namespace transforms::documents {

// Reads the file's tables; nothing in it is guessed. The bytes outlive the object, and so do the
// steps, which learn of everything that is read until the object's end. A password is tried as it
// is and in the encodings that older programs used. Throws what the library throws, see
// OutcomeOfPdfError, and PdfRefusal for packed objects that are too large (PdfStreamSizes.h).
void OpenPdf(QPDF& pdf, personal::Bytes file, const DocumentControl& control = {});

// Whether a PDF that can be opened doesn't open with an empty password. Throws as OpenPdf does.
bool NeedsPassword(personal::Bytes file, PictureSteps* steps = nullptr);

// Why a PDF that was opened can't be changed; nothing when it can. Locked: its permissions forbid
// changes, and the password isn't the owner's. OtherCipher: only its attachments are encrypted.
std::optional<CleanOutcome> RefusalOf(QPDF& pdf);

// Whether the first half of the identifier is part of the key.
bool KeyHasId(QPDF& pdf);

// What the library writes as the second half of a static identifier, and what takes its place: the
// first bytes of a digest, in as many characters.
inline constexpr std::string_view kStaticId = "<31415926535897932384626433832795>";
std::string IdText(const std::string& digest);

// How streams are written: as they are coded, or compressed where they aren't coded at all.
enum class PdfStreams { AsTheyAre, Compressed };

// Equal objects give equal bytes. An encrypted PDF keeps its key, passwords and permissions; RC4 of
// the fourth version becomes AES. On one thread at a time. `steps`, which may be null, learns that
// the work goes on. Throws what the library throws.
personal::OwnedBytes WritePdf(QPDF& pdf, PdfStreams streams, PictureSteps* steps = nullptr);

// Inside a catch block: the outcome of a PdfRefusal; of an error of the library Encrypted, which is
// a missing or wrong password, OtherCipher or Damaged.
// Throws std::bad_alloc on.
CleanOutcome OutcomeOfPdfError();

} // namespace transforms::documents

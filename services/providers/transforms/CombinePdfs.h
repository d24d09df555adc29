// The PDFs of a mail become one (id 65).
#pragma once

#include <string>
#include <vector>

#include "services/providers/transforms/StageCall.h"

namespace providers {

// Puts the PDFs of the list, in its order, into one file, which takes the name and the place of the
// first of them; the others leave the list, and their copies are deleted once the file is whole. A
// PDF is known by its first bytes. Nothing happens to fewer than two. The user is asked for
// passwords; the file is then encrypted as the PDF that is protected best: see PdfCombiner. A PDF
// that is signed or whose password isn't given stays a file of its own if the user decides so.
// False, after a sentence for the user, when the run has to stop, as for a damaged PDF; `paths` is
// then as it was. Records the new file.
bool CombinePdfs(StageCall& call, std::vector<std::wstring>& paths);

} // namespace providers

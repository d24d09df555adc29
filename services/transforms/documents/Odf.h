// Texts, workbooks and presentations in ODF: a package whose manifest lists its files.
#pragma once

#include "services/transforms/documents/Package.h"

namespace transforms::documents {

bool IsOdf(const Package& package);

// Removes properties, previews, names, times, printers, paths and every file that the manifest
// doesn't list. Throws PackageRefusal: Encrypted, Signed, NotSupported for another kind of
// document, Damaged when a file that is needed isn't whole.
void CleanOdf(Package& package);

} // namespace transforms::documents

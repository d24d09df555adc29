// Texts, workbooks and presentations in OOXML: a package of parts that refer to each other by
// relationships.
#pragma once

#include "services/transforms/documents/Package.h"

namespace transforms::documents {

bool IsOoxml(const Package& package);

// Removes properties, names, times, paths and every part that no relationship leads to. Throws
// PackageRefusal: Signed, NotSupported for another kind of package, Damaged when a part that is
// needed isn't whole.
void CleanOoxml(Package& package);

} // namespace transforms::documents

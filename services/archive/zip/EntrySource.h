// An entry as the container library takes it: packed and encrypted already.
#pragma once

#include <zip.h>

#include "services/archive/zip/EntryStream.h"

namespace obarchive {

// A source that reports to the library, before its data is read, the size of the file and that it
// is compressed and encrypted, and afterwards its method and checksum. `encryption` is the
// library's number. `context` must outlive it. Null when there is no memory. The caller owns it
// until an archive takes it.
zip_source_t* MakeEntrySource(StreamContext& context, std::size_t entry, zip_uint16_t encryption,
                              zip_error_t* error);

} // namespace obarchive

// Encrypted entries must not tell the checksum of what they hide.
#pragma once

#include <cstddef>

#include "services/archive/OutputFile.h"

namespace obarchive {

// The AE-2 form of an encrypted entry has a checksum of 0 in both headers, because the checksum of
// the plain data would let anybody confirm a guess of the file; the authentication code behind the
// data guards it instead. The container library marks entries as AE-2 and yet writes the checksum,
// so it is set to 0 afterwards, in the finished but not yet renamed file. `commentSize` is the
// length of the archive's comment in bytes. False when the file can't be read or written, or isn't
// a zip.
bool EraseEncryptedChecksums(OutputFile& output, std::size_t commentSize);

} // namespace obarchive

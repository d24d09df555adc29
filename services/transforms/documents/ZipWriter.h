// Writes a zip in the one form that equal entries have.
#pragma once

#include <string>
#include <vector>

#include "services/transforms/documents/ZipReader.h"

namespace transforms::documents {

// An entry of the new zip: one of the old zip as it is, or one with new bytes.
struct NewZipEntry {
    ZipEntry entry;            // its packed bytes, size and checksum only without new ones
    personal::OwnedBytes made; // packed
    bool isMade = false;
};

// An entry whose bytes are `plain`, packed unless the old one was stored.
NewZipEntry WithBytes(const ZipEntry& old, personal::Bytes plain);

// Without times, comments and further fields, without gaps, in the order of the entries. The parts
// point into the old file and own the rest.
personal::PartList WriteZip(std::vector<NewZipEntry> entries);

} // namespace transforms::documents

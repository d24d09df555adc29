// Reads the directory of a zip that is in memory.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

// Limits that no document meets; what is above them is refused, whatever it may be.
inline constexpr std::size_t kMostZipEntries = 20000;
inline constexpr std::size_t kLargestZipEntry = std::size_t{256} << 20; // unpacked
inline constexpr std::size_t kLargestZipSum = std::size_t{1} << 30;     // all entries, unpacked

enum class ZipMethod : std::uint16_t { Stored = 0, Deflated = 8 };

struct ZipEntry {
    std::string_view name; // as the file spells it
    bool isUtf8 = false;
    ZipMethod method = ZipMethod::Stored;
    std::uint32_t checksum = 0;
    std::size_t size = 0; // unpacked
    personal::Bytes packed;
};

struct ZipContents {
    std::vector<ZipEntry> entries; // in the order of the directory
    // Times, further fields and comments of the entries and of the zip.
    personal::FindingCounter found;
};

bool IsZip(personal::Bytes file);

// Nothing, with the reason in `refusal`, when the zip isn't whole, two entries share bytes or a
// name, or a limit isn't kept. The contents point into the file.
std::optional<ZipContents> ReadZip(personal::Bytes file, CleanOutcome& refusal);

// The entry's bytes as they were packed; nothing when they aren't whole or differ from the
// checksum.
std::optional<personal::OwnedBytes> Unpack(const ZipEntry& entry);

} // namespace transforms::documents

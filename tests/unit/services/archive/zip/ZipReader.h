// Reads back what the archive service wrote: through the container library, and the raw headers.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace obtest {

struct ReadEntry {
    std::string name; // UTF-8
    std::string content;
    std::time_t modified = 0;
    std::uint16_t method = 0;
    std::uint16_t encryption = 0;
};

// Every entry in order; nothing when the file isn't a zip or one entry can't be read to its end
// with this password.
std::optional<std::vector<ReadEntry>> ReadZip(const std::wstring& path,
                                              const std::string& password = {});

// One central header, as it is in the file.
struct RawEntry {
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint32_t checksum = 0;
    std::uint32_t localChecksum = 0;
    std::map<std::uint16_t, std::string> extras;
    std::string packed; // the entry's data as it is stored, encrypted or not
};

// For files below 4 GiB without a comment.
std::vector<RawEntry> ReadRawEntries(const std::wstring& path);

} // namespace obtest

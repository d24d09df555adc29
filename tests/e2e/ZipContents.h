// What another program finds in a zip.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace obtest {

struct ZipEntry {
    std::string content;
    std::uint16_t method = 0;     // 8: deflate
    std::uint16_t encryption = 0; // libzip's numbers: 0 none, 0x0101 AES-128, 0x0103 AES-256
};

// Entries by name, in UTF-8. Empty when the zip can't be read to its end; a failure is reported to
// the running test.
std::map<std::string, ZipEntry> ReadZip(const std::wstring& path, const std::string& password = {});

// The zip opens, and none of its entries can be read with this password.
bool RefusesPassword(const std::wstring& path, const std::string& password);

} // namespace obtest

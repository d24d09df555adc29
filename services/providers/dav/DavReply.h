// What a server reports about its files: the reply to PROPFIND.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace providers {

// One file or folder. What the server doesn't report is absent.
struct DavEntry {
    std::string href; // its address as it was written
    bool isFolder = false;
    std::optional<std::uint64_t> size; // bytes
    std::string etag;                  // with its quotation marks; empty: none
    std::optional<std::uint64_t> freeBytes;
    std::optional<std::uint64_t> usedBytes;

    bool operator==(const DavEntry&) const = default;
};

inline constexpr std::size_t kLongestDavReply = 32u << 20; // bytes: some ten thousand files
inline constexpr std::size_t kMostDavEntries = 50'000;

// The body of a reply of status 207. Nothing when it isn't one, or has more entries than are taken.
// Entries without an address or with a status of failure are left out.
std::optional<std::vector<DavEntry>> ReadMultistatus(std::string_view body);

// The texts of the elements with this name in no namespace, wherever they are, joined; for small
// replies of other interfaces. Nothing when the text is bad or there is no such element.
std::optional<std::string> TextOfElement(std::string_view body, std::string_view name);

} // namespace providers

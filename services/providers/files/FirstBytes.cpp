#include "services/providers/files/FirstBytes.h"

#include <string_view>

namespace providers {

std::string BytesAt(HANDLE file, std::uint64_t at, std::size_t most) {
    std::string bytes(most, '\0');
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(most), &read, &place);
    bytes.resize(read);
    return bytes;
}

bool BeginsAsPdf(HANDLE file) {
    constexpr std::string_view kHeader = "%PDF-";
    return FirstBytes(file, kHeader.size()) == kHeader;
}

} // namespace providers

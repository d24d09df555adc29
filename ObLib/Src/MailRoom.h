// How much of a mail's limit is left for files.
#pragma once

#include <cstdint>

namespace ObLib {

// In bytes: a mail carries files as text, which adds 37 %. No limit is too large for it.
constexpr std::uint64_t RoomForFiles(std::uint64_t mailLimit) noexcept {
    return mailLimit / 137 * 100 + mailLimit % 137 * 100 / 137;
}

} // namespace ObLib

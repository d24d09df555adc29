// Sizes and times as windows about files in the cloud write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace providers {

// A size as the shell writes it, in the user's format of numbers: "3.20 MB".
std::wstring ByteText(std::uint64_t bytes);

// "3.20 MB of 12.0 MB, 1.50 MB a second"; without the speed while that isn't known, and empty while
// the whole size isn't.
std::wstring UploadSpeedText(std::uint64_t sent, std::uint64_t total,
                             std::optional<std::uint64_t> bytesPerSecond);

// "About 25 seconds left" and the like, in steps that grow with the time.
std::wstring UploadTimeText(std::uint64_t secondsLeft);

} // namespace providers

// What the tags of a picture's directories are about.
#pragma once

#include "services/transforms/personal/Findings.h"

namespace transforms::personal {

// The tags that point to directories of their own, and the two that the readers look for.
inline constexpr std::uint16_t kTagOrientation = 0x0112;
inline constexpr std::uint16_t kTagSubDirectories = 0x014A;
inline constexpr std::uint16_t kTagExif = 0x8769;
inline constexpr std::uint16_t kTagGps = 0x8825;
inline constexpr std::uint16_t kTagInterop = 0xA005;
inline constexpr std::uint16_t kTagMakerNotes = 0x927C;

// For a tag of the first directory or of the camera's; `other` for one that isn't in the table.
FindingKind KindOfTag(std::uint16_t tag, FindingKind other);

} // namespace transforms::personal

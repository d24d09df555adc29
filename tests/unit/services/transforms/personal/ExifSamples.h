// Blocks that cameras write, built by hand.
#pragma once

#include "tests/unit/services/transforms/personal/Samples.h"

namespace samples {

inline Sample ExifEntry(unsigned tag, unsigned type, unsigned count, const Sample& field) {
    return Big16(tag) + Big16(type) + Big32(count) + field;
}

// The block with the orientation alone, as the remover leaves it.
inline Sample OrientationBlock(unsigned orientation) {
    return "MM\0*"s + Big32(8) + Big16(1) + ExifEntry(0x112, 3, 1, Big16(orientation) + Big16(0)) +
           Big32(0);
}

// Camera and orientation in the first directory, maker notes in the camera's, a position, a
// thumbnail.
inline Sample CameraBlock(unsigned orientation) {
    constexpr unsigned kCamera = 8 + 2 + 4 * 12 + 4;
    constexpr unsigned kGps = kCamera + 2 + 2 * 12 + 4;
    constexpr unsigned kThumbnail = kGps + 2 + 12 + 4;
    constexpr unsigned kTexts = kThumbnail + 2 + 12 + 4;
    return "MM\0*"s + Big32(8) + Big16(4) + ExifEntry(0x10F, 2, 7, Big32(kTexts)) +
           ExifEntry(0x112, 3, 1, Big16(orientation) + Big16(0)) +
           ExifEntry(0x8769, 4, 1, Big32(kCamera)) + ExifEntry(0x8825, 4, 1, Big32(kGps)) +
           Big32(kThumbnail) + Big16(2) + ExifEntry(0x9003, 2, 7, Big32(kTexts)) +
           ExifEntry(0x927C, 7, 7, Big32(kTexts)) + Big32(0) + Big16(1) +
           ExifEntry(0x1D, 2, 7, Big32(kTexts)) + Big32(0) + Big16(1) +
           ExifEntry(0x201, 4, 1, Big32(kTexts)) + Big32(0) + Sample(kCanary) + "\0"s;
}

// What CameraBlock contains besides its orientation.
inline std::vector<Finding> FoundInCameraBlock() {
    return {{FindingKind::Position, 1},
            {FindingKind::Camera, 1},
            {FindingKind::MakerNotes, 1},
            {FindingKind::Time, 1},
            {FindingKind::Thumbnail, 1}};
}

} // namespace samples

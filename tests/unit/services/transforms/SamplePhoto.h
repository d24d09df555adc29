// A small photo with what a camera writes, for tests that run the real work process.
#pragma once

#include "tests/unit/services/transforms/personal/ExifSamples.h"

namespace samples {

inline Sample PhotoSegment(unsigned code, const Sample& payload) {
    return Sample{'\xFF', static_cast<char>(code)} +
           Big16(static_cast<unsigned>(payload.size()) + 2) + payload;
}

// Position, camera, maker notes, time, thumbnail and a comment; turned, so that the orientation has
// to stay. `seed` makes pictures that differ. Contains the canary.
inline Sample Photo(char seed = '\x12') {
    return "\xFF\xD8"s + PhotoSegment(0xE1, "Exif\0\0"s + CameraBlock(6)) +
           PhotoSegment(0xFE, Sample(kCanary)) + PhotoSegment(0xDB, "\0"s + Sample(64, '\1')) +
           PhotoSegment(0xC4, "\0"s + "\1"s + Sample(15, '\0') + "\0"s) +
           PhotoSegment(0xC0, "\x8"s + Big16(8) + Big16(8) + "\1\1\x11\0"s) +
           PhotoSegment(0xDA, "\1\1\0\0\x3F\0"s) + Sample{seed, '\xFF', '\0', '\x34'} + "\xFF\xD9"s;
}

} // namespace samples

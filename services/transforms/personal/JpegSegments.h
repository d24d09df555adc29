// Takes a JPEG stream apart: markers, segments and the coded data between them.
#pragma once

#include <optional>

#include "services/transforms/personal/Bytes.h"

namespace transforms::personal {

namespace jpeg {
inline constexpr std::uint8_t kStartOfImage = 0xD8;
inline constexpr std::uint8_t kEndOfImage = 0xD9;
inline constexpr std::uint8_t kStartOfScan = 0xDA;
inline constexpr std::uint8_t kFirstApplication = 0xE0;
inline constexpr std::uint8_t kLastApplication = 0xEF;
inline constexpr std::uint8_t kComment = 0xFE;
inline constexpr std::uint8_t kFrameOfJpegLs = 0xF7;

inline bool IsApplication(std::uint8_t marker) {
    return marker >= kFirstApplication && marker <= kLastApplication;
}
bool IsFrame(std::uint8_t marker); // begins an image's description
} // namespace jpeg

struct JpegSegment {
    std::uint8_t marker = 0;
    Bytes stray;   // before the marker; a decoder passes over it
    Bytes whole;   // fill bytes, marker, length and payload
    Bytes payload; // after the length
    Bytes coded;   // after a scan's header, up to the next marker
};

namespace jpeg {
// The segments with what decoders need to know of size and colours, as far as decoders read them.
inline constexpr std::size_t kJfifSize = 14; // without a thumbnail
inline constexpr std::size_t kAdobeSize = 12;
bool IsJfif(const JpegSegment& segment);  // with a thumbnail or without
bool IsAdobe(const JpegSegment& segment); // with more than is read or without

// Whether something in the segment isn't needed for drawing: a comment, or an application's segment
// that is neither of the above, or more than they need.
bool CarriesData(const JpegSegment& segment);
} // namespace jpeg

// Reads segment after segment, from the one after the start of the image.
class JpegReader {
public:
    explicit JpegReader(Bytes file);
    // The next segment; nothing when the file ends early, or when the segment isn't sound: its
    // marker has no meaning here or its length isn't what its content needs.
    std::optional<JpegSegment> Next();
    Bytes Rest() const { return file_.subspan(at_); } // what wasn't read yet

private:
    std::optional<JpegSegment> ReadMarker();
    bool ReadPayload(JpegSegment& segment);

    Bytes file_;
    std::size_t at_;
};

} // namespace transforms::personal

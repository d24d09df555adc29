// What became of a file, and the kinds of personal data with their names.
#pragma once

#include <cstdint>
#include <string_view>

namespace transforms {

enum class CleanOutcome : std::uint8_t {
    Cleaned,      // something was removed
    NothingFound, // the file is as clean as this library makes one
    NotSupported, // a format, or a kind of a format, that isn't cleaned here
    Damaged,      // the file begins as a supported format and can't be read whole
};

// What kind of data was found. The receipt's texts and its stored form are chosen by these values
// and their names (FindingName), so both are stable: new kinds are added at the end.
enum class FindingKind : std::uint8_t {
    Position,        // where a picture was taken, or what a map shows
    Camera,          // maker, model, lens, serial numbers
    CameraSettings,  // exposure and the rest of what a camera writes
    MakerNotes,      // a camera maker's own data
    Time,            // when it was made, changed or scanned
    Person,          // author, owner, copyright
    Software,        // programs and computers
    Description,     // titles, captions, key words, user comments
    Thumbnail,       // a small copy of the picture, which may show an earlier state
    OtherPictures,   // further pictures that a viewer doesn't show
    Xmp,             // a packet of properties as XML
    Iptc,            // a press record, or the block of an image editor that carries it
    Comment,         // a comment of the file format
    Text,            // a text chunk
    Credentials,     // a signed statement of origin
    ApplicationData, // what a program stored for itself in a place meant for that
    PrivateData,     // chunks, tags and extensions that the format doesn't define
    StrayBytes,      // bytes between the parts of a file, which nothing refers to
    TrailingData,    // what follows the picture's end
    Unreadable,      // reported by FindPersonalData alone: a damaged file
};

// A stable ASCII name: lower-case words joined by hyphens, such as "maker-notes".
std::string_view FindingName(FindingKind kind);

struct Finding {
    FindingKind kind;
    std::uint32_t count; // segments, chunks or tags; never 0
    friend bool operator==(const Finding&, const Finding&) = default;
};

} // namespace transforms

// What became of a file, and the kinds of personal data with their names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace transforms {

enum class CleanOutcome : std::uint8_t {
    Cleaned,      // something was removed
    NothingFound, // the file is as clean as this library makes one
    NotSupported, // a format, or a kind of a format, that isn't cleaned here
    Damaged,      // the file begins as a supported format and can't be read whole
    TooLarge,     // a document with more parts, or larger ones, than are read
    Encrypted,    // a document that needs a password, or another one
    Signed,       // a document with a signature, which any change would break
    Locked,       // a document that opens, and whose owner's password is needed to change it
    OtherCipher,  // a document that is encrypted in a way that isn't known here
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
    LocalPath,       // folders and files of a computer
    RevisionIds,     // numbers that tie a document's text to the sessions in which it was written
    Authors,         // who wrote comments and changes, and when
    PrinterSettings, // of the computer that printed last
    OldVersions,     // earlier states of a document, and parts that nothing refers to
    DocumentId,      // a number that every copy of a document carries
    Properties,      // a document's properties: author, company, times, program, statistics
    ChangeHistory,   // a record of who changed what
    FileStructure,   // how the program put the file together: order, gaps, times of its parts
    // These are texts or parts of the content: reported, and never removed.
    DeletedText,   // that change tracking keeps
    HiddenSheets,  // of a workbook
    HiddenSlides,  // of a presentation
    HiddenText,    // characters that are formatted as hidden
    Comments,      // the texts of comments
    EmbeddedFiles, // files, films and pictures inside that aren't looked into
    Macros,        // programs
    CustomData,    // what other programs stored in the document
};
inline constexpr std::size_t kFindingKinds = static_cast<std::size_t>(FindingKind::CustomData) + 1;

// Whether data of this kind is content: it stays, and the user is informed of it.
constexpr bool Stays(FindingKind kind) { return kind >= FindingKind::DeletedText; }

// A stable ASCII name: lower-case words joined by hyphens, such as "maker-notes"; with "stays." in
// front for what stays.
std::string_view FindingName(FindingKind kind);

struct Finding {
    FindingKind kind;
    std::uint32_t count; // segments, chunks or tags; never 0
    friend bool operator==(const Finding&, const Finding&) = default;
};

struct CleanedFile {
    CleanOutcome outcome = CleanOutcome::NotSupported;
    // The whole new file. With NothingFound the bytes that were given, otherwise empty unless
    // Cleaned.
    std::vector<std::byte> bytes;
    // In the order of FindingKind, each kind once; empty unless Cleaned.
    std::vector<Finding> removed;
    // What the file still contains, in the same order; empty unless Cleaned or NothingFound.
    std::vector<Finding> stays;
};

} // namespace transforms

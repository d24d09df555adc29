// What one request to the work process came to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace providers {

enum class WorkResult : std::uint8_t {
    Changed,       // the target is whole, or would be changed
    Unchanged,     // there was nothing to do
    NotSupported,  // not a kind of file that the transform works on
    Damaged,       // the file isn't what its kind requires
    TooLarge,      // more than the work process takes
    Unreadable,    // the source can't be read
    Unwritable,    // the target can't be written, as on a full disk
    CannotFit,     // the picture can't be made small enough
    Encrypted,     // the PDF needs a password, or another one
    Signed,        // the document has a signature, which any change would break
    Locked,        // the PDF opens, and its owner's password is needed to change it
    OtherCipher,   // the document is encrypted, and no password is taken for it
    BadPicture,    // the picture that was to be laid over the file can't be used
    ProcessFailed, // the work process crashed, was silent for too long, or sent what isn't valid
    NotStarted,    // there is no work process: its file is missing or can't be started
    Cancelled,     // the call was to end
};

struct WorkFound {
    std::string key; // of a-z, 0-9, '.' and '-'
    std::uint32_t count = 0;
    friend bool operator==(const WorkFound&, const WorkFound&) = default;
};

struct WorkReport {
    WorkResult result = WorkResult::ProcessFailed;
    std::uint64_t size = 0;       // bytes that were written, by the report, or by the kind
    std::uint32_t number = 0;     // of the picture that it reported last, of several
    std::vector<WorkFound> found; // in the order in which they were sent, each key once
};

} // namespace providers

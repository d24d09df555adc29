// How work on one picture ends, and the exception by which the codecs report it among themselves.
#pragma once

namespace transforms {

enum class PictureOutcome {
    Written,   // the target is whole
    Unchanged, // the picture is within the aim already, or of a kind that passes: animated, of many
               // pages
    Unsupported, // no picture, or one of a form that isn't worked on; passes as well
    Damaged,     // the file isn't what its kind requires, or ends early
    TooLarge,    // more pixels or memory than the limits allow
    CannotFit,   // not even the smallest form meets the aim
    Cancelled,
    ReadFailed,
    WriteFailed,
    OutOfMemory,
};

// Leaves no public function of this room: each catches it and returns its outcome.
struct PictureFailure {
    PictureOutcome outcome;
};

} // namespace transforms

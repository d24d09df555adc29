// Which names and extensions a zip may get.
#pragma once

#include <cstdint>

namespace obarchive {

// The result of ValidateFilespecW. 0 is accepted; the others are the reasons for a refusal.
enum class NameVerdict : std::uint32_t {
    Accepted = 0,
    Empty = 1,
    TooLong = 2,            // more than 255 UTF-16 units
    ForbiddenCharacter = 3, // \ / : * ? " < > | or a control character (0-31, 127-159)
    BadEnd = 4,             // a blank or a point where the file system drops it
    ReservedName = 5,       // a device, with or without an extension, whatever its case
    UnknownMode = 6,
    NoText = 7, // a null pointer
};

// A file name without its folder: not empty, at most 255 units, none of the forbidden characters,
// no blank or point at its end, and not the name of a device: CON, PRN, AUX, NUL, CONIN$, CONOUT$,
// COM and LPT with a digit 1 to 9 or a superscript 1 to 3. Everything else is a name, also one with
// blanks or a point at its beginning.
NameVerdict CheckFileName(const wchar_t* name);

// An extension without its leading point: not empty, at most 255 units, none of the forbidden
// characters, no blank anywhere, no point at either end. Points inside ("tar.gz") are fine. Device
// names are the business of CheckFileName, which callers ask as well.
NameVerdict CheckExtension(const wchar_t* extension);

// `mode` is 2 for a name and 4 for an extension; any other mode accepts nothing.
NameVerdict CheckFilespec(const wchar_t* text, std::uint32_t mode);

} // namespace obarchive

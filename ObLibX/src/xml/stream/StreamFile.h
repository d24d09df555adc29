// Opening a file for a stream: marks, encodings, sizes.
#pragma once

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Bytes that a stream asks for in one read, and units that a stream keeps back before it writes.
inline constexpr std::int32_t kDefaultBlock = 64 * 1024;

// How a file is read.
struct StreamReadOptions {
    // For a file that says nothing itself. Empty: it is found out by looking, UTF-8 if the bytes
    // are that, else the system's code page, which also stands for a name that nobody knows.
    std::wstring encoding;
    std::int32_t blockSize = kDefaultBlock; // bytes; doubled while a node is longer
};

// How a file is written.
struct StreamWriteOptions {
    std::wstring encoding = L"UTF-8"; // "UTF-16" and "UTF-16LE", "UTF-16BE" are written as such
    bool byteOrderMark = false;       // for UTF-8; UTF-16 always gets one
    bool declaration = true;          // <?xml version="1.0" encoding="..."?> in front
    std::int32_t blockSize = kDefaultBlock; // units
};

// Puts the document, which must be in memory mode, into stream reading at the start of the file.
// Text, positions and report go. The encoding is that of the byte order mark, which isn't part of
// the text; else that of UTF-16 which begins with '<'; else what the file's beginning declares;
// else the one of the options. False, in memory mode with no text and with a file_error in the
// report, when the file doesn't open or has 4 GiB or more, and when the encoding is UTF-32, whose
// units a channel can't tell from NULs.
bool OpenStreamForReading(DocumentState& document, const wchar_t* path,
                          const StreamReadOptions& options);

// Makes the file, or empties it, and puts the document into stream writing. False as above, also
// for an encoding that nobody knows or that can't be written (UTF-32).
bool OpenStreamForWriting(DocumentState& document, const wchar_t* path,
                          const StreamWriteOptions& options);

} // namespace ObLibX

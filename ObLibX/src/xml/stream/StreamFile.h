// Opens a file as a stream, which decides BOM and encoding, and closes it.
#pragma once

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The bytes that a stream reads at once, and the units that it collects before it writes.
inline constexpr std::int32_t kDefaultBlock = 64 * 1024;

// How a file is read.
struct StreamReadOptions {
    // For a file that doesn't declare its encoding. Empty: UTF-8 if the file's bytes are that, else
    // the system's code page. The system's code page is also used for an unknown name.
    std::wstring encoding;
    std::int32_t blockSize = kDefaultBlock; // bytes; doubled while a node is longer
};

// How a file is written.
struct StreamWriteOptions {
    std::wstring encoding = L"UTF-8"; // "UTF-16" and "UTF-16LE", "UTF-16BE" are written as such
    bool byteOrderMark = false;       // for UTF-8; UTF-16 always gets one
    bool declaration = true;          // <?xml version="1.0" encoding="..."?> at the start
    std::int32_t blockSize = kDefaultBlock; // units
};

// Puts the document, which must be in memory mode, into stream reading at the start of the file.
// Text, positions and report are dropped. The encoding is the first of: that of the BOM, which
// isn't part of the text; UTF-16, if the file begins with '<' in it; what the file's beginning
// declares; that of the options. False, in memory mode with no text and with a file_error in the
// report, when the file doesn't open or has 4 GiB or more, and when the encoding is UTF-32, as the
// channel would drop the NUL bytes of its units.
bool OpenStreamForReading(DocumentState& document, const wchar_t* path,
                          const StreamReadOptions& options);

// Makes the file, or empties it, and puts the document into stream writing. False as above, and
// also for an unknown encoding and for UTF-32, which can't be written.
bool OpenStreamForWriting(DocumentState& document, const wchar_t* path,
                          const StreamWriteOptions& options);

// Ends a stream: ends the open elements and flushes in writing, closes the file, moves the
// channel's report to `result`, drops the text and returns to memory mode. False when text may not
// have reached the file. In memory mode this does nothing and returns true. Throws std::bad_alloc;
// the stream has ended then too.
bool CloseStream(DocumentState& document);

} // namespace ObLibX

// Carries text between a file's bytes and a document's units, block by block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "ObLibX/src/xml/OpenTagStack.h"

namespace ObLibX {

// Bits of TextFileChannel::fileFlags.
inline constexpr std::uint32_t kFileUtf16 = 0x1;      // UTF-16, no conversion
inline constexpr std::uint32_t kFileBigEndian = 0x80; // that UTF-16 is big-endian

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

// Made by the entry points of a stream mode; belongs to its document's thread. Each step writes an
// element into `report`. Throws std::bad_alloc only.
class TextFileChannel {
public:
    std::unique_ptr<std::FILE, CloseFile> file; // opened in binary mode
    std::uint32_t fileFlags = 0;
    std::int32_t opByteLength = 0; // bytes of the current operation
    std::int32_t blockSize = 0;    // bytes asked for in one read
    std::uint32_t fileLength = 0;  // bytes
    std::uint32_t fileOffset = 0;  // bytes
    std::int32_t unitSize = 1;     // bytes of one code unit in the file: 1 or 2
    std::int32_t opTextLength = 0; // units of the current operation
    std::wstring report;
    std::wstring encoding;                // empty = not yet known
    std::wstring* documentText = nullptr; // the document's, not owned
    OpenTagStack openTags;
    std::int32_t bufferKeepFrom = 0; // before this place of the text nothing is needed any more
    std::int32_t bufferRemoved = 0;  // units that the last ReadMore took from the front
    std::int32_t savedFrom = -1;     // text from here on must survive; -1 = none
    std::wstring savedText;

    // Reads a block of opByteLength bytes (at most the rest of the file) as text to the start of
    // `outText`, detecting UTF-8, giving back a character that the block's end cuts. False after a
    // file error, with what was read so far.
    bool ReadText(std::wstring& outText);
    // fread of opByteLength bytes into `buffer`; drops NUL units and swaps big-endian ones.
    bool ReadBlockRaw(void* buffer);
    // For the scanner: drops the dead front of *documentText and appends a new block. False at the
    // end of the file.
    bool ReadMore();
    bool WriteText(const wchar_t* text, std::int32_t length);
    // `ownsText`: the units may be swapped in place.
    bool WriteBlockRaw(void* data, std::int32_t units, bool ownsText);
    // Decides the encoding at the first write, writes `length` units of `text`, and on success
    // takes them from the front of *documentText; with `flush` also flushes the file.
    bool WriteOut(const wchar_t* text, std::int32_t length, bool flush);
    // Reports the thread's last error as file_error; always false.
    bool ReportFileError();
};

// The encoding that the text itself declares, by its XML declaration or an HTML meta element; empty
// when it declares none.
std::wstring GetDeclaredEncoding(const std::wstring& text);

} // namespace ObLibX

// Carries text between a file's bytes and a document's units, block by block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "ObLibX/src/xml/scan/ScannerState.h"
#include "ObLibX/src/xml/scan/StreamTagStack.h"

namespace ObLibX {

// Bits of TextFileChannel::fileFlags.
inline constexpr std::uint32_t kFileUtf16 = 0x1;      // UTF-16, no conversion
inline constexpr std::uint32_t kFileBigEndian = 0x80; // that UTF-16 is big-endian

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

// Made by the entry points of a stream mode; belongs to its document's thread. Each step writes an
// element into `report`; lengths there are units of the file (read, write) or of UTF-16
// (converted_to, converted_from). `file` must be open whenever a method is called. Throws
// std::bad_alloc only, and can be released afterwards.
class TextFileChannel final : public TextSource {
public:
    std::unique_ptr<std::FILE, FileCloser> file; // opened in binary mode
    std::uint32_t fileFlags = 0;
    std::int32_t opByteLength = 0; // bytes of the current operation
    std::int32_t blockSize = 0;    // bytes asked for in one read
    std::uint32_t fileLength = 0;  // bytes
    std::uint32_t fileOffset = 0;  // bytes
    std::int32_t unitSize = 1;     // bytes of one code unit in the file: 2 with UTF-16, 1 without
    std::int32_t opTextLength = 0; // units of the current operation
    std::wstring report;
    std::wstring encoding; // empty = not yet known
    StreamTagStack openTags;
    std::int32_t savedFrom = -1; // text from here on must survive; -1 = none
    std::wstring savedText;

    // In stream reading: where in the text the scanner goes on, and whether the file's end was
    // told. While the scanner is on its way the place is lost, and so it stays when memory runs
    // out: nothing more can be read then.
    static constexpr std::int32_t kPlaceLost = -1;
    std::int32_t cursor = 0;
    bool ended = false;
    // In stream writing: the elements that were entered, outermost first, whether a line end
    // stands behind the current one, and whether a write has failed, after which the file may hold
    // a part of the text and nothing more is written.
    struct OpenElement {
        bool hasStartTag; // false: still the single tag as which it was added
        bool lineEndAfter;
    };
    std::vector<OpenElement> entered;
    bool lineEndAfter = false;
    bool writeFailed = false;
    bool conversionLoss = false; // some character of all that was written had no equivalent

    // Reads a block of opByteLength bytes (at most the rest of the file) as the text `outText`,
    // detecting UTF-8 as long as no encoding is known, and giving a character back to the file that
    // the block's end cuts. False after a file error, with what was read so far.
    //
    // A UTF-16 file is read in whole units: an odd length is rounded down, 1 becomes 2.
    bool ReadText(std::wstring& outText);
    // fread of opByteLength bytes into `buffer`, which has room for them; drops NUL units and swaps
    // big-endian ones. opByteLength becomes the bytes read, opTextLength the units that are left. A
    // file that ends early counts as ended there. False after a file error, with what was read.
    bool ReadBlockRaw(void* buffer);
    // For the scanner: drops what lies before bufferKeepFrom from *documentText and appends a new
    // block, at least one unit. False, with the text as it was, at the end of the file, and when a
    // file error leaves nothing to append.
    //
    // What goes and lies behind savedFrom is appended to savedText first; savedFrom is then 0, the
    // new front. A savedFrom that stays in the text moves with it.
    bool ReadMore() override;
    // Writes `length` units in the file's encoding. False after a file error.
    bool WriteText(const wchar_t* text, std::int32_t length);
    // fwrite of `units` units of unitSize bytes. `ownsText`: they may be swapped in place.
    bool WriteBlockRaw(void* data, std::int32_t units, bool ownsText);
    // Decides the encoding at the first write, writes `length` units of `text`, and on success
    // takes them from the front of *documentText; with `flush` also flushes the file.
    bool WriteOut(const wchar_t* text, std::int32_t length, bool flush);
    // Closes the file, if it is open. What the C library still held back may fail to reach the disk
    // here; then false.
    bool CloseFile();
    // Reports the thread's last error as file_error; always false.
    bool ReportFileError();

private:
    // NULs that were dropped in front of what is now unit number `before` of the block.
    struct Gap {
        std::int32_t before;
        std::int32_t nulls;
    };

    bool IsUtf16() const { return (fileFlags & (kFileUtf16 | kFileBigEndian)) != 0; }
    bool MoreFollows() const { return fileOffset < fileLength; }
    void ReportBlock(const wchar_t* element);
    void PrepareRequest();
    bool ReadUtf16(std::wstring& outText);
    bool ReadConverted(std::wstring& outText);
    template <typename Unit>
    void DropNulls(Unit* units);
    void DetectUtf8(const void* bytes);
    bool GiveBackCutCharacter(const void* units, const std::wstring& unitEncoding);
    bool GiveBack(std::int32_t units);
    void ConvertBlock(const void* bytes, std::wstring& outText);
    std::int32_t NextRequest(std::int64_t live);
    bool WriteConverted(const wchar_t* text, std::int32_t length);

    std::vector<Gap> gaps_; // of the last block, front to back
};

} // namespace ObLibX

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
inline constexpr std::uint32_t kFileBigEndian = 0x80; // the file is UTF-16 and big-endian

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

// Made by the functions that open a stream; belongs to its document's thread. Each step writes an
// element into `report`; its lengths are in units of the file (read, write) or of UTF-16
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

    // In stream reading: the offset in the text at which the scanner continues, and whether the
    // file's end was reported. The offset is kPlaceLost while a scanner reads. It stays so when
    // memory runs out meanwhile: nothing more can be read then.
    static constexpr std::int32_t kPlaceLost = -1;
    std::int32_t cursor = 0;
    bool ended = false;
    // In stream writing: the elements that were entered, outermost first; whether a line end
    // follows the current element; and whether a write has failed, after which the file may contain
    // a part of the text and nothing more is written.
    struct OpenElement {
        bool hasStartTag; // false: still the empty-element tag as which it was added
        bool lineEndAfter;
    };
    std::vector<OpenElement> entered;
    bool lineEndAfter = false;
    bool writeFailed = false;
    bool conversionLoss = false; // a character of the text so far had no equivalent

    // Reads a block of opByteLength bytes, or the rest of the file if that is less, as the text
    // `outText`. Detects UTF-8 as long as no encoding is known, and gives a character that the
    // block's end cuts back to the file. False after a file error, with the text read so far.
    //
    // A UTF-16 file is read in whole units: an odd length is rounded down, 1 becomes 2.
    bool ReadText(std::wstring& outText);
    // fread of opByteLength bytes into `buffer`, which has room for them; drops NUL units and swaps
    // big-endian ones. opByteLength becomes the number of bytes read, opTextLength that of the
    // units that are left. A file that ends early counts as ended there. False after a file error,
    // with the bytes read so far.
    bool ReadBlockRaw(void* buffer);
    // For the scanner: drops the text before bufferKeepFrom from *documentText and appends a new
    // block, at least one unit. False, with the text as it was, at the end of the file, and when a
    // file error leaves nothing to append.
    //
    // The dropped text from savedFrom on is appended to savedText first; savedFrom is then 0, the
    // new front. A savedFrom in the text that stays moves with the text.
    bool ReadMore() override;
    // Writes `length` units in the file's encoding. False after a file error.
    bool WriteText(const wchar_t* text, std::int32_t length);
    // fwrite of `units` units of unitSize bytes. `ownsText`: they may be swapped in place.
    bool WriteBlockRaw(void* data, std::int32_t units, bool ownsText);
    // Decides the encoding at the first write, writes `length` units of `text`, and on success
    // removes them from the front of *documentText; with `flush` also flushes the file.
    bool WriteOut(const wchar_t* text, std::int32_t length, bool flush);
    // Closes the file, if it is open. False when text that the C library still buffered can't be
    // written.
    bool CloseFile();
    // Reports the thread's last error as file_error; always false.
    bool ReportFileError();

private:
    // A run of NULs that was dropped before what is now unit number `before` of the block.
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

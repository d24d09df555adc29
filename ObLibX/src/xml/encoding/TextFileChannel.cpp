#include "ObLibX/src/xml/encoding/TextFileChannel.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"

namespace ObLibX {
namespace {

constexpr wchar_t kUtf8[] = L"UTF-8";
constexpr wchar_t kUtf16[] = L"UTF-16";
constexpr wchar_t kSystemDefault[] = L"ANSI";
constexpr std::int32_t kMostInt = std::numeric_limits<std::int32_t>::max();

// The C library's fseek takes 32 bits on Windows.
bool SeekBack(std::FILE* file, std::int64_t bytes) {
#ifdef _WIN32
    return _fseeki64(file, -bytes, SEEK_CUR) == 0;
#else
    return fseeko(file, -bytes, SEEK_CUR) == 0;
#endif
}

// Whether a short read is the end of the file. A stream that can't be read needn't have its error
// flag set, so the end-of-file flag must be set. Keeps the thread's last error.
bool EndedEarly(std::FILE* file) { return std::feof(file) != 0 && std::ferror(file) == 0; }

std::uint32_t Advanced(std::uint32_t offset, std::size_t bytes) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(std::uint64_t{offset} + bytes, UINT32_MAX));
}

void SwapBytes(wchar_t* units, std::int32_t count) {
    std::transform(units, units + count, units, [](wchar_t unit) {
        return static_cast<wchar_t>((unit & 0xFF) << 8 | (unit >> 8 & 0xFF));
    });
}

// Units of the encoding in so many bytes.
std::int32_t SourceUnits(const std::wstring& encoding, std::int32_t bytes) {
    return bytes / CodeUnitSize(ConversionPage(encoding));
}

} // namespace

void TextFileChannel::ReportBlock(const wchar_t* element) {
    Report(report, element, encoding.c_str(), kReportEncoding | kReportLength,
           opByteLength / unitSize);
}

// ---- Reading

bool TextFileChannel::ReadText(std::wstring& outText) {
    report.clear();
    outText.clear();
    PrepareRequest();
    if (opByteLength == 0) {
        ReportBlock(L"read");
        return true;
    }
    return IsUtf16() ? ReadUtf16(outText) : ReadConverted(outText);
}

void TextFileChannel::PrepareRequest() {
    unitSize = IsUtf16() ? 2 : 1;
    opTextLength = 0;
    const std::uint32_t rest = MoreFollows() ? fileLength - fileOffset : 0;
    opByteLength = std::max(opByteLength, std::int32_t{0});
    if (rest <= static_cast<std::uint32_t>(opByteLength)) {
        opByteLength = static_cast<std::int32_t>(rest);
    } else if (IsUtf16() && opByteLength > 0) {
        opByteLength = std::max(opByteLength & ~1, std::int32_t{2});
    }
}

bool TextFileChannel::ReadUtf16(std::wstring& outText) {
    outText.resize(static_cast<std::size_t>(opByteLength / 2 + opByteLength / 200) + 1);
    bool good = ReadBlockRaw(outText.data());
    if (good && MoreFollows()) {
        good = GiveBackCutCharacter(outText.data(), kUtf16);
    }
    outText.resize(static_cast<std::size_t>(opTextLength));
    return good;
}

bool TextFileChannel::ReadConverted(std::wstring& outText) {
    const auto bytes =
        std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(opByteLength));
    bool good = ReadBlockRaw(bytes.get());
    if (opByteLength == 0) {
        return good;
    }
    if (encoding.empty()) {
        DetectUtf8(bytes.get());
    }
    if (good && MoreFollows()) {
        good = GiveBackCutCharacter(bytes.get(), encoding);
    }
    ConvertBlock(bytes.get(), outText);
    return good;
}

bool TextFileChannel::ReadBlockRaw(void* buffer) {
    gaps_.clear();
    const auto wanted = static_cast<std::size_t>(opByteLength);
    const std::size_t got = std::fread(buffer, 1, wanted, file.get());
    const bool good = got == wanted || EndedEarly(file.get()) || ReportFileError();
    opByteLength = static_cast<std::int32_t>(got);
    opTextLength = opByteLength / unitSize;
    fileOffset = Advanced(fileOffset, got);
    if (good && got < wanted) {
        fileLength = fileOffset;
    }
    if (got == 0 && !good) {
        return false;
    }
    ReportBlock(L"read");
    if (unitSize == 1) {
        DropNulls(static_cast<std::uint8_t*>(buffer));
        return good;
    }
    auto* const units = static_cast<wchar_t*>(buffer);
    DropNulls(units);
    if ((fileFlags & kFileBigEndian) != 0) {
        SwapBytes(units, opTextLength);
        Report(report, L"endian_swap", nullptr, 0);
    }
    return good;
}

// Closes each gap by one move of the units between this gap and the next.
template <typename Unit>
void TextFileChannel::DropNulls(Unit* units) {
    Unit* const end = units + opTextLength;
    Unit* to = std::find(units, end, Unit{0});
    for (Unit* from = to; from != end;) {
        Unit* const kept = std::find_if(from, end, [](Unit unit) { return unit != 0; });
        gaps_.push_back(
            {static_cast<std::int32_t>(to - units), static_cast<std::int32_t>(kept - from)});
        from = std::find(kept, end, Unit{0});
        const auto run = static_cast<std::size_t>(from - kept);
        std::memmove(to, kept, run * sizeof(Unit));
        to += run;
    }
    const auto dropped = static_cast<std::int32_t>(end - to);
    if (dropped > 0) {
        opTextLength -= dropped;
        Report(report, L"nulls_removed", nullptr, kReportCount, dropped);
    }
}

// A NUL ends the detection. The block has none left, so the detection ends where the first one was.
void TextFileChannel::DetectUtf8(const void* bytes) {
    const auto* const units = static_cast<const std::uint8_t*>(bytes);
    const bool toBlockEnd = gaps_.empty();
    const std::int32_t end = toBlockEnd ? opTextLength : gaps_.front().before;
    bool isUtf8 = true;
    for (std::int32_t at = 0; isUtf8 && at < end;) {
        const Utf8Sequence sequence = ReadUtf8(units + at, end - at);
        at += sequence.length;
        isUtf8 = sequence.kind == Utf8Sequence::Kind::Whole ||
                 (sequence.kind == Utf8Sequence::Kind::Cut && toBlockEnd && MoreFollows());
    }
    if (isUtf8) {
        encoding = kUtf8;
        Report(report, L"read", kUtf8, kReportEncoding | kReportUpdate);
    }
    Report(report, L"utf8_detection", nullptr, 0);
}

// A code unit that the end cuts is given back as well. A boundary at which nothing is left is none,
// as the next block would be this one again.
bool TextFileChannel::GiveBackCutCharacter(const void* units, const std::wstring& unitEncoding) {
    TextConverter converter;
    converter.fromEncoding = unitEncoding;
    converter.source = units;
    const std::int32_t bytes = opTextLength * unitSize;
    converter.sourceLength = SourceUnits(unitEncoding, bytes);
    std::int32_t back = 0;
    const bool found = FindCharBoundary(converter, back);
    back += bytes % CodeUnitSize(ConversionPage(unitEncoding));
    if (found && (back < bytes || back == 0)) {
        return back == 0 || GiveBack(back / unitSize);
    }
    Report(report, L"truncation_error", encoding.empty() ? kSystemDefault : encoding.c_str(),
           kReportEncoding);
    return true;
}

// NULs among the bytes that are given back are read, and dropped, once more.
bool TextFileChannel::GiveBack(std::int32_t units) {
    std::int32_t nulls = 0;
    std::int32_t allNulls = 0;
    for (const Gap& gap : gaps_) {
        allNulls += gap.nulls;
        nulls += gap.before > opTextLength - units ? gap.nulls : 0;
    }
    const std::int32_t bytes = (units + nulls) * unitSize;
    if (!SeekBack(file.get(), bytes)) {
        return ReportFileError();
    }
    fileOffset -= static_cast<std::uint32_t>(bytes);
    opByteLength -= bytes;
    opTextLength -= units;
    Report(report, L"read", nullptr, kReportLength | kReportUpdate, opByteLength / unitSize);
    if (nulls > 0) {
        Report(report, L"nulls_removed", nullptr, kReportCount | kReportUpdate, allNulls - nulls);
    }
    return true;
}

void TextFileChannel::ConvertBlock(const void* bytes, std::wstring& outText) {
    TextConverter converter;
    converter.fromEncoding = encoding;
    converter.source = bytes;
    converter.sourceLength = SourceUnits(encoding, opTextLength);
    const auto count = static_cast<std::size_t>(converter.Convert(nullptr, kUtf16));
    outText.resize(count + count / 100 + 1);
    converter.destinationCapacity =
        static_cast<std::int32_t>(std::min<std::size_t>(outText.size(), kMostInt));
    opTextLength = converter.Convert(outText.data(), kUtf16);
    outText.resize(static_cast<std::size_t>(opTextLength));
    Report(report, L"converted_to", kUtf16, kReportEncoding | kReportLength, opTextLength);
}

bool TextFileChannel::ReadMore() {
    bufferRemoved = 0;
    const auto size = static_cast<std::int64_t>(documentText->size());
    const auto removed =
        static_cast<std::int32_t>(std::clamp<std::int64_t>(bufferKeepFrom, 0, size));
    const std::int64_t live = size - removed;
    if (!MoreFollows()) {
        return false;
    }
    if (live > size / 2) {
        blockSize = std::clamp(blockSize, std::int32_t{0}, kMostInt / 2) * 2;
    }
    std::wstring block;
    bool good = true;
    while (good && block.empty() && MoreFollows()) {
        opByteLength = NextRequest(live);
        good = ReadText(block);
    }
    if (block.empty()) {
        return false;
    }
    if (live + static_cast<std::int64_t>(block.size()) > kMostInt) {
        throw std::bad_alloc();
    }
    // Whatever can throw comes before the text is changed.
    documentText->reserve(static_cast<std::size_t>(live) + block.size());
    if (savedFrom >= 0 && savedFrom < removed) {
        savedText.append(*documentText, static_cast<std::size_t>(savedFrom),
                         static_cast<std::size_t>(removed - savedFrom));
    }
    documentText->erase(0, static_cast<std::size_t>(removed)).append(block);
    savedFrom = savedFrom < 0 ? -1 : std::max(savedFrom - removed, std::int32_t{0});
    bufferRemoved = removed;
    return true;
}

// A text that is longer than a block still gets the smallest block, so that each call adds text.
std::int32_t TextFileChannel::NextRequest(std::int64_t live) {
    const std::int64_t request = ((blockSize - live) & ~std::int64_t{3}) + 4;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(request, 4, kMostInt & ~3));
}

// ---- Writing

bool TextFileChannel::WriteOut(const wchar_t* text, std::int32_t length, bool flush) {
    if (fileOffset == 0 && encoding.empty()) {
        encoding = GetDeclaredEncoding({text, static_cast<std::size_t>(std::max(length, 0))});
        if (encoding.empty()) {
            encoding = kUtf8;
        }
    }
    if (!WriteText(text, length)) {
        return false;
    }
    if (documentText != nullptr && length > 0) {
        documentText->erase(0, static_cast<std::size_t>(length));
    }
    return !flush || std::fflush(file.get()) == 0 || ReportFileError();
}

bool TextFileChannel::WriteText(const wchar_t* text, std::int32_t length) {
    report.clear();
    unitSize = IsUtf16() ? 2 : 1;
    if (length <= 0) {
        opByteLength = 0;
        opTextLength = 0;
        ReportBlock(L"write");
        return true;
    }
    // WriteBlockRaw doesn't change a text that it doesn't own.
    return IsUtf16() ? WriteBlockRaw(const_cast<wchar_t*>(text), length, false)
                     : WriteConverted(text, length);
}

bool TextFileChannel::WriteConverted(const wchar_t* text, std::int32_t length) {
    TextConverter converter;
    converter.fromEncoding = kUtf16;
    converter.source = text;
    converter.sourceLength = length;
    const std::int32_t count = converter.Convert(nullptr, encoding);
    const auto unit = static_cast<std::size_t>(CodeUnitSize(ConversionPage(encoding)));
    const auto bytes =
        std::make_unique_for_overwrite<char[]>((static_cast<std::size_t>(count) + 1) * unit);
    converter.destinationCapacity = count;
    const std::int32_t written = converter.Convert(bytes.get(), encoding);
    Report(report, L"converted_from", kUtf16, kReportEncoding | kReportLength, length);
    if (converter.usedDefault != 0) {
        conversionLoss = true;
        Report(report, L"conversion_loss", nullptr, 0);
    }
    const auto units = std::min<std::size_t>(static_cast<std::size_t>(written) * unit, kMostInt);
    return WriteBlockRaw(bytes.get(), static_cast<std::int32_t>(units), true);
}

bool TextFileChannel::WriteBlockRaw(void* data, std::int32_t units, bool ownsText) {
    const std::size_t bytes = static_cast<std::size_t>(units) * static_cast<std::size_t>(unitSize);
    std::wstring copy;
    if (unitSize == 2 && (fileFlags & kFileBigEndian) != 0) {
        if (!ownsText) {
            copy.assign(static_cast<const wchar_t*>(data), static_cast<std::size_t>(units));
            data = copy.data();
        }
        SwapBytes(static_cast<wchar_t*>(data), units);
        Report(report, L"endian_swap", nullptr, 0);
    }
    const std::size_t written = std::fwrite(data, 1, bytes, file.get());
    const bool good = written == bytes || ReportFileError();
    fileOffset = Advanced(fileOffset, written);
    opByteLength = static_cast<std::int32_t>(std::min<std::size_t>(written, kMostInt));
    opTextLength = opByteLength / unitSize;
    if (good) {
        Report(report, L"write", encoding.c_str(), kReportEncoding | kReportLength, units);
    }
    return good;
}

bool TextFileChannel::CloseFile() {
    return !file || std::fclose(file.release()) == 0 || ReportFileError();
}

bool TextFileChannel::ReportFileError() {
    const std::uint32_t error = SystemLastError();
    std::wstring text = SystemErrorText(error);
    text.resize(std::min(text.find_first_of(L"\r\n"), text.size()));
    Report(report, L"file_error", text.c_str(), kReportMsg | kReportN,
           static_cast<std::int32_t>(error));
    return false;
}

} // namespace ObLibX

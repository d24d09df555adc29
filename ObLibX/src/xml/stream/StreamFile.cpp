#include "ObLibX/src/xml/stream/StreamFile.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/encoding/SystemCalls.h"
#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/names/NameTables.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "ObLibX/src/xml/stream/StreamWriting.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kCodePageUtf16BigEndian = 1201;
constexpr std::int32_t kCodePageUtf32LittleEndian = 12000; // as the system numbers them
constexpr std::int32_t kCodePageUtf32BigEndian = 12001;
constexpr std::int32_t kDeclarationSpan = 4096;    // bytes in which a file declares its encoding
constexpr std::int32_t kLongestLook = 1024 * 1024; // bytes that are looked at for UTF-8
constexpr wchar_t kConversionLoss[] = L"conversion_loss";
constexpr wchar_t kTooLarge[] = L"The file is too large to be read as a stream.";
constexpr wchar_t kWrongEncoding[] = L"The encoding isn't known or can't be used for a stream.";

// The bytes with which a file begins, and the encoding that they mean.
struct Beginning {
    std::string_view bytes;
    std::uint32_t mark; // bytes of the BOM
    const wchar_t* encoding;
};
constexpr Beginning kBeginnings[] = {
    {std::string_view("\xEF\xBB\xBF", 3), 3, L"UTF-8"},
    {std::string_view("\xFF\xFE", 2), 2, L"UTF-16"},
    {std::string_view("\xFE\xFF", 2), 2, L"UTF-16BE"},
    {std::string_view("<\0", 2), 0, L"UTF-16"},
    {std::string_view("\0<", 2), 0, L"UTF-16BE"},
};

bool IsUtf16(std::int32_t page) {
    return page == kCodePageUtf16 || page == kCodePageUtf16BigEndian;
}
bool IsUtf32(std::int32_t page) {
    return page == kCodePageUtf32 || page == kCodePageUtf32LittleEndian ||
           page == kCodePageUtf32BigEndian;
}

bool Refuse(DocumentState& document, const wchar_t* words) {
    Report(document.result, L"file_error", words, kReportMsg);
    return false;
}

// Reports the thread's last error.
bool RefuseFile(DocumentState& document, TextFileChannel& channel) {
    channel.ReportFileError();
    document.result = channel.report;
    return false;
}

void SetEncoding(TextFileChannel& channel, const std::wstring& encoding) {
    const std::int32_t page = LookupCodePage(encoding);
    channel.encoding = encoding;
    if (IsUtf16(page)) channel.fileFlags |= kFileUtf16;
    if (page == kCodePageUtf16BigEndian) channel.fileFlags |= kFileBigEndian;
    channel.unitSize = IsUtf16(page) ? 2 : 1;
}

const Beginning* FindBeginning(std::string_view bytes) {
    const Beginning* const found =
        std::find_if(std::begin(kBeginnings), std::end(kBeginnings),
                     [bytes](const Beginning& each) { return bytes.starts_with(each.bytes); });
    return found == std::end(kBeginnings) ? nullptr : found;
}

// The letters of a declaration are ASCII in every encoding without a BOM.
std::wstring DeclaredIn(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    for (const char byte : bytes) text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    std::wstring name = GetDeclaredEncoding(text);
    const std::int32_t page = LookupCodePage(name);
    // A text that could be read as bytes isn't in an encoding of 16 or 32 bits, whatever it
    // declares.
    return page > 0 && !IsUtf16(page) && !IsUtf32(page) ? name : std::wstring();
}

// Whether the bytes up to the first NUL contain a bad UTF-8 sequence. A sequence that the end cuts
// is not bad.
bool IsNoUtf8(std::string_view bytes) {
    const auto* const units = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const auto end = static_cast<std::int32_t>(std::min(bytes.find('\0'), bytes.size()));
    for (std::int32_t at = 0; at < end;) {
        const Utf8Sequence sequence = ReadUtf8(units + at, end - at);
        if (sequence.kind == Utf8Sequence::Kind::Bad) return true;
        at += sequence.length;
    }
    return false;
}

// The channel detects UTF-8 in each block as long as it knows no encoding. A file that declares
// nothing and whose first block is no UTF-8 is read in the system's code page to its end, so that a
// later block of plain ASCII doesn't change the encoding.
std::wstring GuessedFrom(std::string_view bytes) { return IsNoUtf8(bytes) ? L"ANSI" : L""; }

// Decides the encoding and sets the file to the end of the BOM.
void LookAtBeginning(TextFileChannel& channel, const StreamReadOptions& options) {
    const auto span =
        static_cast<std::size_t>(std::clamp(channel.blockSize, kDeclarationSpan, kLongestLook));
    const auto buffer = std::make_unique_for_overwrite<char[]>(span);
    const std::size_t got = std::fread(buffer.get(), 1, span, channel.file.get());
    const std::string_view bytes(buffer.get(), got);
    if (const Beginning* const beginning = FindBeginning(bytes)) {
        channel.fileOffset = beginning->mark;
        SetEncoding(channel, beginning->encoding);
    } else {
        const std::wstring declared = DeclaredIn(bytes.substr(0, kDeclarationSpan));
        const std::wstring given = declared.empty() ? options.encoding : declared;
        SetEncoding(channel, given.empty() ? GuessedFrom(bytes) : given);
    }
    std::fseek(channel.file.get(), static_cast<long>(channel.fileOffset), SEEK_SET);
}

std::unique_ptr<TextFileChannel> MakeChannel(DocumentState& document, std::int32_t blockSize) {
    auto channel = std::make_unique<TextFileChannel>();
    channel->documentText = &document.text;
    channel->blockSize = std::max(blockSize, std::int32_t{4});
    channel->openTags.IgnoreCase(document.IgnoresCase());
    return channel;
}

void Enter(DocumentState& document, std::unique_ptr<TextFileChannel> channel, std::uint32_t mode) {
    channel->fileFlags |= mode;
    document.channel = std::move(channel);
    document.docFlags |= mode;
}

const wchar_t* MarkOf(std::int32_t page, bool wanted) {
    return IsUtf16(page) || (page == kCodePageUtf8 && wanted) ? L"\xFEFF" : L"";
}

std::wstring DeclarationOf(const std::wstring& encoding) {
    return L"<?xml version=\"1.0\" encoding=\"" + encoding + L"\"?>\r\n";
}

// ---- The end of a stream

bool FinishAndClose(DocumentState& document) {
    const bool finished = !document.Has(kDocStreamWrite) || FinishStream(document);
    TextFileChannel& channel = *document.channel;
    const bool closed = channel.CloseFile();
    // The channel's report is only that of its last block.
    const bool lossReported = channel.report.find(kConversionLoss) != std::wstring::npos;
    if (channel.conversionLoss && !lossReported)
        Report(document.result, kConversionLoss, nullptr, 0);
    if (document.result.size() < kReportLimit) document.result += channel.report;
    return finished && closed;
}

// Back to memory mode, with nothing left of the stream.
void LeaveStream(DocumentState& document) noexcept {
    document.channel.reset();
    document.docFlags &= ~kDocStreams;
    document.text.clear();
    ForgetElements(document);
}

} // namespace

bool OpenStreamForReading(DocumentState& document, const wchar_t* path,
                          const StreamReadOptions& options) {
    if (IsUtf32(LookupCodePage(options.encoding))) return Refuse(document, kWrongEncoding);
    auto channel = MakeChannel(document, options.blockSize);
    channel->file.reset(OpenFileStream(path, false));
    if (!channel->file) return RefuseFile(document, *channel);
    const std::int64_t length = FileStreamLength(channel->file.get());
    if (length < 0) return RefuseFile(document, *channel);
    if (length > UINT32_MAX) return Refuse(document, kTooLarge);
    channel->fileLength = static_cast<std::uint32_t>(length);
    LookAtBeginning(*channel, options);
    Enter(document, std::move(channel), kDocStreamRead);
    return true;
}

bool OpenStreamForWriting(DocumentState& document, const wchar_t* path,
                          const StreamWriteOptions& options) {
    const std::int32_t page = LookupCodePage(options.encoding);
    if (page <= 0 || IsUtf32(page)) return Refuse(document, kWrongEncoding);
    auto channel = MakeChannel(document, options.blockSize);
    SetEncoding(*channel, options.encoding);
    std::wstring text = MarkOf(page, options.byteOrderMark);
    if (options.declaration) text += DeclarationOf(options.encoding);
    channel->file.reset(OpenFileStream(path, true));
    if (!channel->file) return RefuseFile(document, *channel);
    document.text.swap(text);
    Enter(document, std::move(channel), kDocStreamWrite);
    return true;
}

bool CloseStream(DocumentState& document) {
    if (!document.Has(kDocStreams)) return true;
    try {
        const bool written = FinishAndClose(document);
        LeaveStream(document);
        return written;
    } catch (...) {
        LeaveStream(document);
        throw;
    }
}

} // namespace ObLibX

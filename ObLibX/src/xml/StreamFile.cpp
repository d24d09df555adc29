#include "ObLibX/src/xml/StreamFile.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ObLibX/src/xml/DocumentReport.h"
#include "ObLibX/src/xml/NameTables.h"
#include "ObLibX/src/xml/SystemFile.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kCodePageUtf16BigEndian = 1201;
constexpr std::size_t kDeclarationSpan = 4096; // bytes in which a file declares its encoding
constexpr wchar_t kTooLarge[] = L"The file is too large to be read as a stream.";
constexpr wchar_t kUnknownEncoding[] = L"The encoding isn't known or can't be written.";

// What a file begins with, and what that says.
struct Beginning {
    std::string_view bytes;
    std::uint32_t mark; // bytes that aren't text
    std::uint32_t fileFlags;
    const wchar_t* encoding;
};
constexpr Beginning kBeginnings[] = {
    {std::string_view("\xEF\xBB\xBF", 3), 3, 0, L"UTF-8"},
    {std::string_view("\xFF\xFE", 2), 2, kFileUtf16, L"UTF-16"},
    {std::string_view("\xFE\xFF", 2), 2, kFileUtf16 | kFileBigEndian, L"UTF-16BE"},
    {std::string_view("<\0", 2), 0, kFileUtf16, L"UTF-16"},
    {std::string_view("\0<", 2), 0, kFileUtf16 | kFileBigEndian, L"UTF-16BE"},
};

bool Refuse(DocumentState& document, const wchar_t* words) {
    Report(document.result, L"file_error", words, kReportMsg);
    return false;
}

// The declaration's own letters are ASCII in every encoding that has no mark.
std::wstring DeclaredIn(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    for (const char byte : bytes) text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    std::wstring name = GetDeclaredEncoding(text);
    const std::int32_t page = LookupCodePage(name);
    // One of 16 or 32 bits can't be true of a text that could be read so far.
    const bool wide = page == kCodePageUtf16 || page == kCodePageUtf16BigEndian ||
                      page == kCodePageUtf32 || page == 12000 || page == 12001;
    return page > 0 && !wide ? name : std::wstring();
}

// Settles encoding and mark, and leaves the file behind the mark.
void LookAtBeginning(TextFileChannel& channel, const StreamReadOptions& options) {
    std::array<char, kDeclarationSpan> buffer;
    const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), channel.file.get());
    const std::string_view bytes(buffer.data(), got);
    channel.encoding = options.encoding;
    bool settled = false;
    for (const Beginning& beginning : kBeginnings) {
        if (settled || bytes.substr(0, beginning.bytes.size()) != beginning.bytes) continue;
        channel.fileOffset = beginning.mark;
        channel.fileFlags |= beginning.fileFlags;
        channel.encoding = beginning.encoding;
        settled = true;
    }
    if (!settled) {
        if (std::wstring declared = DeclaredIn(bytes); !declared.empty()) {
            channel.encoding = std::move(declared);
        }
    }
    channel.unitSize = (channel.fileFlags & kFileUtf16) != 0 ? 2 : 1;
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
    const bool wide = page == kCodePageUtf16 || page == kCodePageUtf16BigEndian;
    return wide || (page == kCodePageUtf8 && wanted) ? L"\xFEFF" : L"";
}

void SettleWriting(TextFileChannel& channel, std::int32_t page, const std::wstring& encoding) {
    channel.encoding = encoding;
    if (page == kCodePageUtf16) channel.fileFlags |= kFileUtf16;
    if (page == kCodePageUtf16BigEndian) channel.fileFlags |= kFileUtf16 | kFileBigEndian;
    channel.unitSize = (channel.fileFlags & kFileUtf16) != 0 ? 2 : 1;
}

std::wstring DeclarationOf(const std::wstring& encoding) {
    return L"<?xml version=\"1.0\" encoding=\"" + encoding + L"\"?>\r\n";
}

} // namespace

bool OpenStreamForReading(DocumentState& document, const wchar_t* path,
                          const StreamReadOptions& options) {
    auto channel = MakeChannel(document, options.blockSize);
    channel->file.reset(OpenFileStream(path, false));
    if (!channel->file) {
        channel->ReportFileError();
        document.result = channel->report;
        return false;
    }
    const std::int64_t length = FileStreamLength(channel->file.get());
    if (length < 0 || length > UINT32_MAX) return Refuse(document, kTooLarge);
    channel->fileLength = static_cast<std::uint32_t>(length);
    LookAtBeginning(*channel, options);
    Enter(document, std::move(channel), kDocStreamRead);
    return true;
}

bool OpenStreamForWriting(DocumentState& document, const wchar_t* path,
                          const StreamWriteOptions& options) {
    const std::int32_t page = LookupCodePage(options.encoding);
    if (page <= 0 || page == kCodePageUtf32 || page == 12000 || page == 12001) {
        return Refuse(document, kUnknownEncoding);
    }
    auto channel = MakeChannel(document, options.blockSize);
    SettleWriting(*channel, page, options.encoding);
    document.text = MarkOf(page, options.byteOrderMark);
    if (options.declaration) document.text += DeclarationOf(options.encoding);
    channel->file.reset(OpenFileStream(path, true));
    if (!channel->file) {
        channel->ReportFileError();
        document.result = channel->report;
        document.text.clear();
        return false;
    }
    Enter(document, std::move(channel), kDocStreamWrite);
    return true;
}

} // namespace ObLibX

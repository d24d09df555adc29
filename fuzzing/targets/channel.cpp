// Files of any bytes are read block by block, and text that was written comes back whole.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/encoding/TextFileChannel.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "fuzzing/support/Soundness.h"

using namespace ObLibX;

namespace {

struct FileForm {
    const wchar_t* encoding; // empty: found out by looking
    std::uint32_t flags;
    bool isUnicode; // has every character
};
constexpr FileForm kForms[] = {
    {L"", 0, false},
    {L"UTF-8", 0, true},
    {L"UTF-16", kFileUtf16, true},
    {L"UTF-16BE", kFileUtf16 | kFileBigEndian, true},
    {L"windows-1252", 0, false},
    {L"shift_jis", 0, false},
    {L"gb18030", 0, false},
    {L"euc-jp", 0, false},
    {L"UTF-32", 0, false},
    {L"nobody", 0, false},
};

bool Has(const std::wstring& report, const wchar_t* element) {
    return report.find(std::wstring(L"<") + element) != std::wstring::npos;
}

struct Reading {
    std::wstring text;
    bool cut = false; // some block's end may have cut a character
};

// Reads the file to its end with the given requests in turn.
class Reader {
public:
    Reader(const std::string& bytes, const FileForm& form) : bytes_(bytes) {
        channel_.file.reset(fmemopen(bytes_.data(), bytes_.size(), "rb"));
        Require(channel_.file != nullptr, "a file in memory opens");
        channel_.fileLength = static_cast<std::uint32_t>(bytes.size());
        channel_.fileFlags = form.flags;
        channel_.encoding = form.encoding;
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Reading ReadIn(const std::string& requests) {
        Reading all;
        for (std::size_t i = 0; channel_.fileOffset < channel_.fileLength; ++i) {
            const auto request = static_cast<std::uint8_t>(requests[i % requests.size()]);
            ReadBlock(request + 1, all);
        }
        return all;
    }
    Reading ReadWhole() {
        Reading all;
        ReadBlock(static_cast<std::int32_t>(channel_.fileLength), all);
        Require(channel_.fileOffset == channel_.fileLength, "a large block reads the whole file");
        return all;
    }

private:
    void ReadBlock(std::int32_t request, Reading& all) {
        const std::uint32_t before = channel_.fileOffset;
        std::wstring text;
        channel_.opByteLength = request;
        Require(channel_.ReadText(text), "a file in memory has no errors");
        Require(channel_.fileOffset > before, "each block makes progress");
        Require(channel_.fileOffset == before + static_cast<std::uint32_t>(channel_.opByteLength),
                "by the bytes that it reports");
        Require(channel_.fileOffset <= channel_.fileLength, "and not past the end");
        Require(channel_.opTextLength == static_cast<std::int32_t>(text.size()),
                "a block's units are reported");
        RequireSoundReport(channel_.report);
        all.text += text;
        all.cut = all.cut || Has(channel_.report, L"truncation_error");
    }

    std::string bytes_;
    TextFileChannel channel_;
};

// A whole pair at least, so that nothing is cut in two.
std::size_t PieceLength(const std::wstring& text, std::size_t at, std::uint8_t wanted) {
    const std::size_t end = std::min(text.size(), at + 1 + wanted % 64);
    const bool low = end < text.size() && text[end] >= 0xDC00 && text[end] <= 0xDFFF;
    return end - at + (low ? 1 : 0);
}

std::string Written(const std::wstring& text, const FileForm& form, const std::string& pieces) {
    char* memory = nullptr;
    std::size_t size = 0;
    std::wstring left = text;
    TextFileChannel channel;
    channel.file.reset(open_memstream(&memory, &size));
    Require(channel.file != nullptr, "a file in memory opens");
    channel.fileFlags = form.flags;
    channel.encoding = form.encoding;
    channel.documentText = &left;
    for (std::size_t i = 0; !left.empty(); ++i) {
        const auto piece = static_cast<std::uint8_t>(pieces[i % pieces.size()]);
        const std::size_t length = PieceLength(left, 0, piece);
        const std::size_t rest = left.size() - length;
        Require(channel.WriteOut(left.data(), static_cast<std::int32_t>(length), piece >= 128),
                "a file in memory has no errors");
        Require(left.size() == rest, "what was written is taken from the text");
        RequireSoundReport(channel.report);
    }
    const std::uint32_t offset = channel.fileOffset;
    Require(channel.CloseFile(), "a file in memory closes");
    Require(offset == size, "the bytes written are counted");
    std::string bytes(memory, size);
    std::free(memory);
    return bytes;
}

void WriteAndRead(FuzzInput& input, const FileForm& form, const std::string& blocks) {
    const std::wstring text = WithoutNulls(WithWholePairs(input.Rest()));
    const std::string bytes = Written(text, form, blocks);
    if (form.isUnicode) {
        const bool utf16 = (form.flags & kFileUtf16) != 0;
        Require(bytes == (utf16 ? Utf16Of(text, (form.flags & kFileBigEndian) != 0) : Utf8Of(text)),
                "Unicode is written as it is defined");
    }
    if (bytes.empty()) return;
    const Reading inBlocks = Reader(bytes, form).ReadIn(blocks);
    const Reading whole = Reader(bytes, form).ReadWhole();
    Require(!form.isUnicode || whole.text == text, "what was written comes back");
    Require(inBlocks.cut || *form.encoding == L'\0' || inBlocks.text == whole.text,
            "in blocks of any size");
}

void ReadAnyBytes(FuzzInput& input, const FileForm& form, const std::string& blocks) {
    const std::string bytes(reinterpret_cast<const char*>(input.Bytes()), input.Left());
    if (bytes.empty()) return;
    const Reading inBlocks = Reader(bytes, form).ReadIn(blocks);
    const Reading whole = Reader(bytes, form).ReadWhole();
    // Halves of pairs meet again in the text, and all NULs are dropped.
    Require((form.flags & kFileUtf16) == 0 || inBlocks.text == whole.text,
            "UTF-16 of any kind is the same in blocks");
    Require(whole.text.size() <= bytes.size() + 1, "no unit comes of less than a byte");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::uint32_t choice = input.Byte();
    const FileForm& form = kForms[choice / 2 % std::size(kForms)];
    std::string blocks;
    for (int i = 0; i < 2; ++i) blocks += static_cast<char>(input.Byte());
    choice % 2 == 0 ? WriteAndRead(input, form, blocks) : ReadAnyBytes(input, form, blocks);
    return 0;
}

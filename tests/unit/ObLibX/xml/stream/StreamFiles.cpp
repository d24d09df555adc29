#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "ObLibX/src/xml/encoding/TextConverter.h"

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

std::vector<std::uint8_t> Utf16(std::wstring_view text, bool bigEndian) {
    std::vector<std::uint8_t> bytes;
    const std::wstring marked = std::wstring(L"\xFEFF").append(text);
    for (const wchar_t unit : marked) {
        const auto low = static_cast<std::uint8_t>(unit & 0xFF);
        const auto high = static_cast<std::uint8_t>(unit >> 8 & 0xFF);
        bytes.push_back(bigEndian ? high : low);
        bytes.push_back(bigEndian ? low : high);
    }
    return bytes;
}

// Other processes of the same tests may run in the same folder.
const std::string& OwnPrefix() {
    static const std::string prefix = "stream-test-" + std::to_string(std::random_device()()) + "-";
    return prefix;
}

} // namespace

std::vector<std::uint8_t> Encoded(std::wstring_view text, const std::wstring& encoding) {
    if (encoding == L"UTF-16" || encoding == L"UTF-16BE") return Utf16(text, encoding != L"UTF-16");
    ObLibX::TextConverter converter;
    converter.fromEncoding = L"UTF-16";
    converter.source = text.data();
    converter.sourceLength = static_cast<std::int32_t>(text.size());
    const std::int32_t count = converter.Convert(nullptr, encoding);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count) + 1);
    converter.destinationCapacity = count;
    converter.Convert(bytes.data(), encoding);
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

std::wstring Decoded(const std::vector<std::uint8_t>& bytes, const std::wstring& encoding) {
    std::wstring text;
    if (encoding == L"UTF-16" || encoding == L"UTF-16BE") {
        const std::size_t low = encoding == L"UTF-16" ? 0 : 1;
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
            text += static_cast<wchar_t>(bytes[at + low] | bytes[at + 1 - low] << 8);
        }
        return text;
    }
    ObLibX::TextConverter converter;
    converter.fromEncoding = encoding;
    converter.source = bytes.data();
    converter.sourceLength = static_cast<std::int32_t>(bytes.size());
    text.resize(static_cast<std::size_t>(converter.Convert(nullptr, L"UTF-16")));
    converter.destinationCapacity = static_cast<std::int32_t>(text.size());
    converter.Convert(text.data(), L"UTF-16");
    return text;
}

bool IsInstalled(const std::wstring& encoding) { return !Encoded(L"a", encoding).empty(); }

StreamFile::StreamFile() {
    static int number = 0;
    narrowPath_ = OwnPrefix() + std::to_string(++number) + ".xml";
    path_.assign(narrowPath_.begin(), narrowPath_.end());
}

StreamFile::StreamFile(std::wstring_view text, const std::wstring& encoding) : StreamFile() {
    Write(Encoded(text, encoding));
}

StreamFile::StreamFile(const std::vector<std::uint8_t>& bytes) : StreamFile() { Write(bytes); }

StreamFile::~StreamFile() { std::remove(narrowPath_.c_str()); }

void StreamFile::Write(const std::vector<std::uint8_t>& bytes) const {
    const File file(std::fopen(narrowPath_.c_str(), "wb"));
    ASSERT_NE(nullptr, file);
    ASSERT_EQ(bytes.size(), std::fwrite(bytes.data(), 1, bytes.size(), file.get()));
}

std::vector<std::uint8_t> StreamFile::Read() const {
    const File file(std::fopen(narrowPath_.c_str(), "rb"));
    std::vector<std::uint8_t> bytes;
    for (int byte = file ? std::fgetc(file.get()) : EOF; byte != EOF;
         byte = std::fgetc(file.get())) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    return bytes;
}

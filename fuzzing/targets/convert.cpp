// Every pair of the names that are known, at every capacity.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ObLibX/src/xml/encoding/TextConverter.h"
#include "ObLibX/src/xml/names/NameTables.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/NameRows.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

constexpr std::uint8_t kUntouched = 0xA5;
constexpr std::size_t kSpare = 16; // bytes past the capacity that must stay

// Those of the Unicode encodings come often, the others as often as they are in the table.
std::wstring SomeEncoding(FuzzInput& input) {
    constexpr const wchar_t* kOften[] = {L"UTF-8",  L"UTF-16",       L"UTF-32",    L"",
                                         L"nobody", L"windows-1252", L"shift_jis", L"gb18030"};
    const std::uint32_t choice = input.Byte();
    if (choice < 192) return input.Pick(kOften);
    return CharsetRows()[(choice << 8 | input.Byte()) % CharsetRows().size()].name;
}

struct Conversion {
    std::vector<std::uint8_t> bytes; // what was written, without the bytes after it
    std::int32_t length;             // units
    std::int32_t usedDefault;
};

class Pair {
public:
    // The source is as long as its units, and is at an odd address if `odd`.
    Pair(std::wstring from, std::wstring to, FuzzInput& input, bool odd)
        : from_(std::move(from)), to_(std::move(to)),
          unit_(static_cast<std::size_t>(CodeUnitSize(ConversionPage(to_)))) {
        const auto unit = static_cast<std::size_t>(CodeUnitSize(ConversionPage(from_)));
        length_ = input.Left() / unit;
        const std::size_t shift = odd ? 1 : 0;
        memory_ = std::make_unique<std::uint8_t[]>(length_ * unit + shift);
        std::copy_n(input.Bytes(), length_ * unit, memory_.get() + shift);
        source_ = memory_.get() + shift;
    }

    std::int32_t Count() const {
        TextConverter converter = Converter(0);
        return converter.Convert(nullptr, to_);
    }
    Conversion Convert(std::int32_t capacity) const;
    std::size_t SourceLength() const { return length_; }
    std::size_t UnitSize() const { return unit_; }
    // Between those two this library converts by itself.
    bool IsOwn() const { return IsUnicode(from_) && IsUnicode(to_) && !IsSystems(); }

private:
    static bool IsUnicode(const std::wstring& name) {
        const std::int32_t page = ConversionPage(name);
        return page == kCodePageUtf8 || page == kCodePageUtf16 || page == kCodePageUtf32;
    }
    bool IsSystems() const {
        const bool from8 = ConversionPage(from_) == kCodePageUtf8;
        const bool to8 = ConversionPage(to_) == kCodePageUtf8;
        return (from8 && ConversionPage(to_) != kCodePageUtf32) ||
               (to8 && ConversionPage(from_) != kCodePageUtf32);
    }
    TextConverter Converter(std::int32_t capacity) const {
        TextConverter converter;
        converter.fromEncoding = from_;
        converter.source = source_;
        converter.sourceLength = static_cast<std::int32_t>(length_);
        converter.destinationCapacity = capacity;
        return converter;
    }

    std::wstring from_;
    std::wstring to_;
    std::size_t unit_;
    std::size_t length_;
    std::unique_ptr<std::uint8_t[]> memory_;
    const std::uint8_t* source_;
};

Conversion Pair::Convert(std::int32_t capacity) const {
    const std::size_t room = static_cast<std::size_t>(capacity) * unit_;
    Conversion result{std::vector<std::uint8_t>(room + kSpare, kUntouched), 0, 0};
    TextConverter converter = Converter(capacity);
    result.length = converter.Convert(result.bytes.data(), to_);
    result.usedDefault = converter.usedDefault;
    Require(result.length == converter.destinationCapacity, "both lengths are the same");
    Require(capacity == 0 || (result.length >= 0 && result.length <= capacity),
            "a capacity is kept");
    Require(std::all_of(result.bytes.begin() + static_cast<std::ptrdiff_t>(room),
                        result.bytes.end(), [](std::uint8_t byte) { return byte == kUntouched; }),
            "nothing is written past the capacity");
    result.bytes.resize(std::min(room, static_cast<std::size_t>(result.length) * unit_));
    return result;
}

bool IsPrefix(const Conversion& part, const Conversion& whole) {
    return part.bytes.size() <= whole.bytes.size() &&
           std::equal(part.bytes.begin(), part.bytes.end(), whole.bytes.begin());
}

void ConvertAtCapacities(const Pair& pair, std::int32_t capacity) {
    const std::int32_t count = pair.Count();
    Require(count >= 0, "a count is no error");
    Require(static_cast<std::size_t>(count) <= 8 * pair.SourceLength() + 8,
            "nor out of all bounds");
    const Conversion whole = pair.Convert(count);
    Require(whole.length == count, "what was counted is what is written");
    const Conversion roomy = pair.Convert(count + 5);
    Require(roomy.bytes == whole.bytes, "more room changes nothing");
    Require(roomy.usedDefault == whole.usedDefault, "nor what was replaced");
    const Conversion cut = pair.Convert(capacity % (count + 2));
    Require(IsPrefix(cut, whole), "with less room comes the beginning");
    // A character has up to four units.
    Require(!pair.IsOwn() || cut.length + 3 >= std::min(count, capacity % (count + 2)),
            "as much of it as fits");
}

// A text that UTF-16 can encode survives both conversions.
void RoundTrip(const std::wstring& text, const std::wstring& encoding) {
    TextConverter there;
    there.fromEncoding = L"UTF-16";
    there.source = text.data();
    there.sourceLength = static_cast<std::int32_t>(text.size());
    const auto units = static_cast<std::size_t>(there.Convert(nullptr, encoding));
    std::vector<std::uint32_t> middle(units + 1);
    there.destinationCapacity = static_cast<std::int32_t>(units);
    there.Convert(middle.data(), encoding);
    TextConverter back;
    back.fromEncoding = encoding;
    back.source = middle.data();
    back.sourceLength = static_cast<std::int32_t>(units);
    std::wstring again(text.size() + 1, L'\0');
    back.destinationCapacity = static_cast<std::int32_t>(again.size());
    again.resize(static_cast<std::size_t>(back.Convert(again.data(), L"UTF-16")));
    Require(again == text, "a text comes back as it was");
}

void FindBoundary(const std::wstring& encoding, const std::uint8_t* bytes, std::size_t size) {
    const auto unit = static_cast<std::size_t>(CodeUnitSize(ConversionPage(encoding)));
    const auto source = std::make_unique<std::uint8_t[]>(size / unit * unit);
    std::copy_n(bytes, size / unit * unit, source.get());
    TextConverter converter;
    converter.fromEncoding = encoding;
    converter.source = source.get();
    converter.sourceLength = static_cast<std::int32_t>(size / unit);
    std::int32_t back = -1;
    const bool found = FindCharBoundary(converter, back);
    Require(back >= 0 && back <= static_cast<std::int32_t>(size),
            "the bytes that are given back exist");
    Require(found || back == 0, "nothing is given back without a boundary");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    const std::wstring from = SomeEncoding(input);
    const std::wstring to = SomeEncoding(input);
    const std::uint32_t choice = input.Byte();
    FindBoundary(from, input.Bytes(), input.Left());
    ConvertAtCapacities(Pair(from, to, input, choice >= 128), static_cast<std::int32_t>(choice));
    const std::wstring text = WithoutNulls(WithWholePairs(input.Rest()));
    RoundTrip(text, L"UTF-8");
    RoundTrip(text, L"UTF-32");
    RoundTrip(text, L"UTF-16");
    return 0;
}

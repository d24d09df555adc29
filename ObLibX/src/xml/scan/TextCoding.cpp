#include "ObLibX/src/xml/scan/TextCoding.h"

#include "ObLibX/src/xml/names/NameTables.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/QuickScan.h"

namespace ObLibX {
namespace {

// Units after the &, with the ; : the longest name and the longest number have 8.
constexpr std::size_t kLongestReference = 9;
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

// A reference without its &, folded to lower case.
struct Reference {
    wchar_t units[kLongestReference];
    std::size_t length = 0; // without the ;

    std::wstring_view Name() const { return {units, length}; }
};

// False when the first nine units contain no ; or a unit that isn't ASCII before it.
bool CollectReference(std::wstring_view after, Reference& reference) {
    for (std::size_t i = 0; i < after.size() && i < kLongestReference; ++i) {
        if (after[i] == L';') return true;
        if (after[i] >= 128) return false;
        reference.units[reference.length++] = FoldAscii(after[i]);
    }
    return false;
}

// The value of a digit in lower case; 16 for a unit that is no digit.
std::uint32_t DigitValue(wchar_t unit) {
    if (unit >= L'0' && unit <= L'9') return static_cast<std::uint32_t>(unit - L'0');
    if (unit >= L'a' && unit <= L'f') return static_cast<std::uint32_t>(unit - L'a') + 10;
    return 16;
}

// `digits` is the text after the #. 0 when a unit of it isn't a digit. Eight units can't overflow.
std::uint32_t NumberValue(std::wstring_view digits) {
    const std::uint32_t base = !digits.empty() && digits[0] == L'x' ? 16 : 10;
    if (base == 16) digits.remove_prefix(1);
    std::uint32_t value = 0;
    for (const wchar_t digit : digits) {
        if (DigitValue(digit) >= base) return 0;
        value = value * base + DigitValue(digit);
    }
    return value;
}

// The code point, 0 for what is no reference. There is no code point above 0x10FFFF, and no pair
// of units can encode one.
std::uint32_t ReferenceValue(const Reference& reference) {
    const std::wstring_view name = reference.Name();
    if (name.empty() || name[0] != L'#') return LookupEntity(name);
    const std::uint32_t value = NumberValue(name.substr(1));
    return value <= kLastCodePoint ? value : 0;
}

void AppendCodePoint(std::wstring& out, std::uint32_t value) {
    if (value > 0xFFFF) {
        out.push_back(static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10)));
        value = 0xDC00 + ((value - 0x10000) & 0x3FF);
    }
    out.push_back(static_cast<wchar_t>(value));
}

// Appends the character of the reference at the start of `text`, or the & when there is no
// reference. Returns the number of units read.
std::size_t DecodeReference(std::wstring_view text, std::wstring& out) {
    Reference reference;
    const bool ended = CollectReference(text.substr(1), reference);
    const std::uint32_t value = ended ? ReferenceValue(reference) : 0;
    if (value == 0) {
        out.push_back(L'&');
        return 1;
    }
    AppendCodePoint(out, value);
    return reference.length + 2;
}

void DecodeAll(std::wstring_view text, std::wstring& out) {
    const wchar_t* const end = text.data() + text.size();
    for (const wchar_t* at = text.data();;) {
        const wchar_t* const reference = FindUnit(at, end, EqualTo{L'&'});
        out.append(at, static_cast<std::size_t>(reference - at));
        if (reference == end) return;
        at = reference +
             DecodeReference({reference, static_cast<std::size_t>(end - reference)}, out);
    }
}

void DecodeTrimmed(std::wstring_view text, bool collapse, std::wstring& out) {
    std::size_t kept = 0; // units of `out` up to the last one that isn't white space
    for (std::size_t at = 0; at < text.size();) {
        if (IsXmlSpace(text[at])) {
            const bool dropped = kept == 0 || (collapse && out.size() > kept);
            if (!dropped) out.push_back(collapse ? L' ' : text[at]);
            ++at;
            continue;
        }
        if (text[at] == L'&') {
            at += DecodeReference(text.substr(at), out);
        } else {
            out.push_back(text[at++]);
        }
        kept = out.size();
    }
    out.resize(kept);
}

bool StartsReference(wchar_t unit) {
    return unit == L'#' || unit == L':' || unit == L'_' || ObLib::IsAsciiLetter(unit) ||
           unit >= 128;
}

bool ContinuesReference(wchar_t unit) {
    return unit == L'-' || unit == L'.' || (unit >= L'0' && unit <= L'9') || unit == L':' ||
           unit == L'_' || ObLib::IsAsciiLetter(unit) || unit >= 128;
}

// Units of what looks like a reference at the & at the start of `text`, the ; included; 0 when it
// doesn't.
std::size_t ReferenceLength(std::wstring_view text) {
    if (text.size() < 2 || !StartsReference(text[1])) return 0;
    std::size_t at = 2;
    while (at < text.size() && ContinuesReference(text[at])) ++at;
    return at < text.size() && text[at] == L';' ? at + 1 : 0;
}

// The reference that replaces a unit; null when the unit stays.
const wchar_t* EncodedUnit(wchar_t unit, std::uint32_t flags) {
    const bool quotes = (flags & kEncodeAttribute) != 0;
    switch (unit) {
    case L'<':
        return L"&lt;";
    case L'&':
        return L"&amp;";
    case L'>':
        return L"&gt;";
    case L'"':
        return quotes ? L"&quot;" : nullptr;
    case L'\'':
        return quotes ? L"&apos;" : nullptr;
    default:
        return nullptr;
    }
}

} // namespace

void DecodeText(std::wstring_view text, std::uint32_t flags, std::wstring& out) {
    out.clear();
    out.reserve(text.size());
    if ((flags & (kDocTrim | kDocCollapse)) != 0) {
        DecodeTrimmed(text, (flags & kDocCollapse) != 0, out);
    } else {
        DecodeAll(text, out);
    }
}

std::wstring DecodeText(std::wstring_view text, std::uint32_t flags) {
    std::wstring out;
    DecodeText(text, flags, out);
    return out;
}

std::wstring EncodeText(std::wstring_view text, std::uint32_t flags) {
    std::wstring out;
    out.reserve(text.size() + text.size() / 10 + 7);
    for (std::size_t at = 0; at < text.size();) {
        const bool keeps = text[at] == L'&' && (flags & kEncodeKeepReferences) != 0;
        if (const std::size_t length = keeps ? ReferenceLength(text.substr(at)) : 0; length != 0) {
            out.append(text, at, length);
            at += length;
            continue;
        }
        if (const wchar_t* encoded = EncodedUnit(text[at], flags)) {
            out.append(encoded);
        } else {
            out.push_back(text[at]);
        }
        ++at;
    }
    return out;
}

} // namespace ObLibX

// References are written so that reading them gives the text back.
#include <algorithm>
#include <string_view>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/TextCoding.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

// Text without references, trimmed and, with `collapse`, with one blank for each inner run.
std::wstring PlainlyTrimmed(std::wstring_view text, bool collapse) {
    const auto isText = [](wchar_t unit) { return !IsXmlSpace(unit); };
    const auto first = std::find_if(text.begin(), text.end(), isText);
    const auto last = std::find_if(text.rbegin(), text.rend(), isText).base();
    std::wstring out;
    for (auto at = first; at < last; ++at) {
        if (!collapse || isText(*at)) {
            out += *at;
        } else if (isText(at[-1])) {
            out += L' ';
        }
    }
    return out;
}

void Encode(const std::wstring& text) {
    for (const std::uint32_t attribute : {0u, kEncodeAttribute}) {
        const std::wstring encoded = EncodeText(text, attribute);
        Require(DecodeText(encoded, 0) == text, "what was encoded decodes to the text");
        Require(encoded.find_first_of(attribute != 0 ? L"<>\"'" : L"<>") == std::wstring::npos,
                "nothing is left that ends a value");
        const std::wstring kept = EncodeText(text, attribute | kEncodeKeepReferences);
        Require(EncodeText(kept, attribute | kEncodeKeepReferences) == kept,
                "what was encoded once stays as it is");
        Require(DecodeText(kept, 0) == DecodeText(text, 0), "kept references mean the same");
    }
}

void Decode(const std::wstring& text) {
    const std::wstring decoded = DecodeText(text, 0);
    const std::wstring trimmed = DecodeText(text, kDocTrim);
    const std::wstring collapsed = DecodeText(text, kDocCollapse);
    Require(decoded.size() <= text.size(), "decoding never lengthens");
    Require(trimmed.size() <= decoded.size(), "trimming never lengthens");
    Require(collapsed.size() <= trimmed.size(), "collapsing never lengthens");
    Require(decoded.find(trimmed) != std::wstring::npos, "trimming cuts at the ends only");
    Require(DecodeText(text, kDocTrim | kDocCollapse) == collapsed, "collapsing trims too");
    if (text.find(L'&') == std::wstring::npos) {
        Require(decoded == text, "without references a text stays as it is");
        Require(trimmed == PlainlyTrimmed(text, false), "white space is cut at the ends");
        Require(collapsed == PlainlyTrimmed(text, true), "inner white space becomes one blank");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::wstring text = FuzzInput(bytes, size).Rest();
    Encode(text);
    Decode(text);
    return 0;
}

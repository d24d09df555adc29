#include "ObLibX/src/xml/document/StepMatch.h"

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

bool IsNamed(const DocumentState& document, std::int32_t position, std::wstring_view name) {
    if (PathStep::IsAnyName(name)) return true;
    const std::wstring_view own = ElementName(document, position);
    return own.size() == name.size() &&
           SameName(own.data(), name.data(), name.size(), document.IgnoresCase());
}

bool HasChildNamed(const DocumentState& document, std::int32_t position, std::wstring_view name) {
    const ElementRecordTable& records = *document.records;
    std::uint32_t child = records[static_cast<std::uint32_t>(position)].firstChild;
    while (child != 0 && !IsNamed(document, static_cast<std::int32_t>(child), name)) {
        child = records[child].next;
    }
    return child != 0;
}

bool FindAttributeOf(const DocumentState& document, std::int32_t position, std::wstring_view name,
                     TagScanner& scanner) {
    scanner = ScannerBehindName(document, *TagAt(document, position));
    return scanner.FindAttribute(name.data(), name.size());
}

// Whether decoding would leave it as it is.
bool IsPlain(const DocumentState& document, std::wstring_view value) {
    return !document.Has(kDocTrim | kDocCollapse) && value.find(L'&') == std::wstring_view::npos;
}

// Both values are compared decoded, as GetAttribute gives one; plain ones where they stand.
bool HasValue(const DocumentState& document, std::int32_t position, const PathStep& step) {
    TagScanner scanner(nullptr, 0, 0);
    if (!FindAttributeOf(document, position, step.testName, scanner)) return false;
    const std::wstring_view raw(scanner.Token(), static_cast<std::size_t>(scanner.TokenLength()));
    if (IsPlain(document, raw) && IsPlain(document, step.value)) return raw == step.value;
    return DecodeText(raw, document.docFlags) == DecodeText(step.value, document.docFlags);
}

bool MeetsTest(const DocumentState& document, std::int32_t position, const PathStep& step) {
    switch (step.test) {
    case StepTest::Attribute:
        return HasAttribute(document, position, step.testName);
    case StepTest::Value:
        return HasValue(document, position, step);
    case StepTest::Child:
        return HasChildNamed(document, position, step.testName);
    default:
        return true;
    }
}

} // namespace

bool Matches(const DocumentState& document, std::int32_t position, const PathStep& step) {
    return IsNamed(document, position, step.name) && MeetsTest(document, position, step);
}

bool HasAttribute(const DocumentState& document, std::int32_t position, std::wstring_view name) {
    TagScanner scanner(nullptr, 0, 0);
    return FindAttributeOf(document, position, name, scanner);
}

} // namespace ObLibX

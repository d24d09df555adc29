#include "ObLibX/src/xml/document/XmlPath.h"

#include <limits>

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

// ---- How a path is read

// The place in the path. Each Read... returns false for a unit that isn't allowed there.
struct PathCursor {
    const wchar_t* at;

    bool Take(wchar_t unit) {
        if (*at != unit) return false;
        ++at;
        return true;
    }

    bool ReadName(std::wstring_view& name) {
        name = {at, CallerNameLength(at)};
        at += name.size();
        return !name.empty();
    }

    // Reads the text up to `end`, and `end`.
    bool ReadUpTo(wchar_t end, std::wstring_view& text) {
        const wchar_t* from = at;
        while (*at != L'\0' && *at != end) ++at;
        text = {from, static_cast<std::size_t>(at - from)};
        return Take(end);
    }
};

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// N]
bool ReadCount(PathCursor& cursor, PathStep& step) {
    constexpr std::uint32_t kHighest = std::numeric_limits<std::uint32_t>::max();
    step.test = StepTest::Count;
    step.count = 0;
    for (; IsDigit(*cursor.at); ++cursor.at) {
        const auto digit = static_cast<std::uint32_t>(*cursor.at - L'0');
        const bool fits = step.count < kHighest / 10;
        step.count = fits ? step.count * 10 + digit : kHighest;
    }
    return cursor.Take(L']');
}

// "value"], 'value'] or value]
bool ReadValue(PathCursor& cursor, PathStep& step) {
    step.test = StepTest::Value;
    for (const wchar_t quote : {L'"', L'\''}) {
        if (cursor.Take(quote)) return cursor.ReadUpTo(quote, step.value) && cursor.Take(L']');
    }
    return cursor.ReadUpTo(L']', step.value);
}

// name] or name=value], after the @
bool ReadAttributeTest(PathCursor& cursor, PathStep& step) {
    step.test = StepTest::Attribute;
    if (!cursor.ReadName(step.testName)) return false;
    return cursor.Take(L'=') ? ReadValue(cursor, step) : cursor.Take(L']');
}

// Reads from after the [ to after the ]. Digits that begin with 0 are no number but the name of a
// child, which no element has.
bool ReadTest(PathCursor& cursor, PathStep& step) {
    if (IsDigit(*cursor.at) && *cursor.at != L'0') return ReadCount(cursor, step);
    if (cursor.Take(L'@')) return ReadAttributeTest(cursor, step);
    step.test = StepTest::Child;
    return cursor.ReadName(step.testName) && cursor.Take(L']');
}

bool ReadStep(PathCursor& cursor, PathStep& step) {
    if (!cursor.ReadName(step.name)) return false;
    if (cursor.Take(L'[') && !ReadTest(cursor, step)) return false;
    return *cursor.at == L'/' || *cursor.at == L'\0';
}

// name, after the /@, and nothing after it
bool ReadAttributeStep(PathCursor& cursor, std::wstring_view& attribute) {
    return cursor.ReadName(attribute) && *cursor.at == L'\0';
}

// ---- How an element is compared with a step

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
    scanner = ScannerAfterName(document, *TagAt(document, position));
    return scanner.FindAttribute(name.data(), name.size());
}

// Whether decoding would not change the value.
bool IsPlain(const DocumentState& document, std::wstring_view value) {
    return !document.Has(kDocTrim | kDocCollapse) && value.find(L'&') == std::wstring_view::npos;
}

// Compares both values decoded, as GetAttribute returns them; plain values in place.
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

XmlPath::XmlPath(const wchar_t* path) {
    if (path == nullptr || *path == L'\0') return;
    PathCursor cursor{path};
    type_ = PathType::Relative;
    if (cursor.Take(L'/')) type_ = cursor.Take(L'/') ? PathType::Below : PathType::Absolute;
    do {
        if (count_ != 0 && cursor.Take(L'@')) {
            bad_ = type_ == PathType::Below || !ReadAttributeStep(cursor, attribute_);
            return;
        }
        PathStep step;
        bad_ = !ReadStep(cursor, step) || *step.name.data() == L'@' ||
               (type_ == PathType::Below && count_ != 0);
        if (bad_) return;
        Add(step);
    } while (cursor.Take(L'/'));
}

bool XmlPath::HasChildTest() const {
    for (std::size_t i = 0; i < count_; ++i) {
        if ((*this)[i].test == StepTest::Child) return true;
    }
    return false;
}

void XmlPath::Add(const PathStep& step) {
    if (count_ < kFewSteps) {
        few_[count_] = step;
    } else {
        more_.push_back(step);
    }
    ++count_;
}

bool Matches(const DocumentState& document, std::int32_t position, const PathStep& step) {
    return IsNamed(document, position, step.name) && MeetsTest(document, position, step);
}

bool HasAttribute(const DocumentState& document, std::int32_t position, std::wstring_view name) {
    TagScanner scanner(nullptr, 0, 0);
    return FindAttributeOf(document, position, name, scanner);
}

} // namespace ObLibX

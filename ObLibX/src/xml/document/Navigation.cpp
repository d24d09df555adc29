#include "ObLibX/src/xml/document/Navigation.h"

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/XmlPath.h"

namespace ObLibX {
namespace {

std::int32_t FirstChild(const DocumentState& document, std::int32_t position) {
    return static_cast<std::int32_t>(RecordAt(document, position).firstChild);
}
std::int32_t NextSibling(const DocumentState& document, std::int32_t position) {
    return static_cast<std::int32_t>(RecordAt(document, position).next);
}
std::int32_t ParentOf(const DocumentState& document, std::int32_t position) {
    return static_cast<std::int32_t>(RecordAt(document, position).parent);
}

// As NextInDocumentOrder, but 0 when the next element isn't below `top`; a `top` of 0 is the whole
// document.
std::int32_t NextBelow(const DocumentState& document, std::int32_t position, std::int32_t top) {
    if (const std::int32_t child = FirstChild(document, position)) return child;
    for (; position != top && position != 0; position = ParentOf(document, position)) {
        if (const std::int32_t next = NextSibling(document, position)) return next;
    }
    return 0;
}

// The first match from `candidate` on, or the N-th where the step counts; `next` returns the
// candidate after one.
template <typename Next>
std::int32_t FindMatch(const DocumentState& document, const PathStep& step, std::int32_t candidate,
                       Next next) {
    std::uint32_t left = step.count;
    for (; candidate != 0; candidate = next(candidate)) {
        if (Matches(document, candidate, step) && --left == 0) return candidate;
    }
    return 0;
}

// Resolves the steps; the candidates of the first are `candidate` and its following siblings. Where
// a step has no match, the search continues after the match of the step before, unless that step
// was counted. No element is a candidate of two steps, so that this is linear.
std::int32_t ResolveSteps(const DocumentState& document, const XmlPath& path,
                          std::int32_t candidate) {
    const auto next = [&document](std::int32_t at) { return NextSibling(document, at); };
    std::int32_t matched = 0; // of the step before
    for (std::size_t step = 0;;) {
        if (step == path.StepCount()) {
            const std::wstring_view attribute = path.Attribute();
            if (attribute.empty() || HasAttribute(document, matched, attribute)) return matched;
        } else if (const std::int32_t found = FindMatch(document, path[step], candidate, next)) {
            matched = found;
            candidate = FirstChild(document, found);
            ++step;
            continue;
        }
        do {
            if (step == 0) return 0;
            --step;
            candidate = NextSibling(document, matched);
            matched = ParentOf(document, matched);
        } while (path[step].test == StepTest::Count);
    }
}

// Where a search begins. A search for PathType::Below stays below `top`; 0 is no limit.
struct SearchStart {
    std::int32_t parent;
    std::int32_t current;
    std::int32_t top;
};

std::int32_t Resolve(const DocumentState& document, const XmlPath& path, const SearchStart& place) {
    const std::int32_t level = place.current != 0 ? NextSibling(document, place.current)
                                                  : FirstChild(document, place.parent);
    if (path.IsBad()) return 0;
    switch (path.Type()) {
    case PathType::Any:
        return level;
    case PathType::Absolute:
        return ResolveSteps(document, path, FirstChild(document, 0));
    case PathType::Below: {
        const auto next = [&](std::int32_t at) { return NextBelow(document, at, place.top); };
        const std::int32_t from = place.current != 0 ? place.current : place.parent;
        return FindMatch(document, path[0], next(from), next);
    }
    default:
        return ResolveSteps(document, path, level);
    }
}

} // namespace

bool FindElement(DocumentState& document, const wchar_t* path) {
    if (document.Has(kDocStreams) || !PositionsAreValid(document)) return false;
    const SearchStart place{document.parentPos, document.currentPos, 0};
    const std::int32_t found = Resolve(document, XmlPath(path), place);
    if (found == 0) return false;
    SetPosition(document, ParentOf(document, found), found, 0);
    return true;
}

bool FindChildElement(DocumentState& document, const wchar_t* path) {
    if (document.Has(kDocStreams) || !PositionsAreValid(document)) return false;
    const XmlPath steps(path);
    if (document.currentPos == 0 && !FindElement(document, nullptr)) return false;
    const SearchStart place{document.currentPos, document.childPos, document.currentPos};
    const std::int32_t found = Resolve(document, steps, place);
    if (found == 0) return false;
    const std::int32_t parent = ParentOf(document, found);
    SetPosition(document, ParentOf(document, parent), parent, found);
    return true;
}

bool IntoElement(DocumentState& document) {
    if (document.Has(kDocStreams) || !PositionsAreValid(document)) return false;
    if (document.nodeLength != 0 || document.currentPos == 0) return false;
    SetPosition(document, document.currentPos, document.childPos, 0);
    return true;
}

bool OutOfElement(DocumentState& document) {
    if (!PositionsAreValid(document) || document.parentPos == 0) return false;
    SetPosition(document, ParentOf(document, document.parentPos), document.parentPos,
                document.currentPos);
    return true;
}

std::int32_t NextInDocumentOrder(const DocumentState& document, std::int32_t position) {
    return NextBelow(document, position, 0);
}

} // namespace ObLibX

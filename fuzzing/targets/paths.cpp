// A path finds what a plain search over the tree finds, and one that finds nothing moves nothing.
#include <algorithm>
#include <memory>
#include <vector>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/document/Navigation.h"
#include "ObLibX/src/xml/document/XmlPath.h"
#include "ObLibX/src/xml/scan/TextCoding.h"
#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"

using namespace ObLibX;

namespace {

constexpr std::size_t kLongestPath = 96;
constexpr std::uint32_t kModes[] = {0, kDocIgnoreCase, kDocTrim, kDocIgnoreCase | kDocCollapse};

// Resolves a path by trying everything, with the methods that read a document.
class PlainSearch {
public:
    // The document's position is moved and put back.
    PlainSearch(XmlOffsetDocument& document, const XmlPath& path)
        : document_(document), path_(path) {}

    std::int32_t Among(std::int32_t candidate) { return Steps(0, candidate); }
    // Of the elements after `from` in document order, as long as they are below `top`.
    std::int32_t Below(std::int32_t from, std::int32_t top) {
        std::uint32_t seen = 0;
        for (std::int32_t at = NextInDocumentOrder(document_.State(), from);
             at != 0 && IsBelow(at, top); at = NextInDocumentOrder(document_.State(), at)) {
            if (Meets(at, path_[0]) && ++seen == path_[0].count) return at;
        }
        return 0;
    }
    std::int32_t FirstChild(std::int32_t at) const {
        return static_cast<std::int32_t>((*document_.State().records)[at].firstChild);
    }
    std::int32_t Next(std::int32_t at) const {
        return static_cast<std::int32_t>((*document_.State().records)[at].next);
    }

private:
    std::int32_t Steps(std::size_t step, std::int32_t candidate) {
        std::uint32_t seen = 0;
        const bool counts = path_[step].test == StepTest::Count;
        for (; candidate != 0; candidate = Next(candidate)) {
            if (!Meets(candidate, path_[step]) || ++seen < (counts ? path_[step].count : 1)) {
                continue;
            }
            const std::int32_t found = After(step, candidate);
            if (found != 0 || counts) return found;
        }
        return 0;
    }
    std::int32_t After(std::size_t step, std::int32_t matched) {
        if (step + 1 < path_.StepCount()) return Steps(step + 1, FirstChild(matched));
        return path_.Attribute().empty() || HasAttribute(matched, path_.Attribute()) ? matched : 0;
    }
    bool IsBelow(std::int32_t at, std::int32_t top) const {
        if (top == 0) return true;
        while (at != 0 && at != top) {
            at = static_cast<std::int32_t>((*document_.State().records)[at].parent);
        }
        return at == top;
    }
    bool Meets(std::int32_t at, const PathStep& step) {
        if (!IsNamed(at, step.name)) return false;
        if (step.test == StepTest::Attribute) return HasAttribute(at, step.testName);
        if (step.test == StepTest::Value) {
            return HasAttribute(at, step.testName) &&
                   document_.GetAttribute(at, std::wstring(step.testName).c_str()) ==
                       DecodeText(step.value, document_.Flags());
        }
        if (step.test != StepTest::Child) return true;
        std::int32_t child = FirstChild(at);
        while (child != 0 && !IsNamed(child, step.testName)) child = Next(child);
        return child != 0;
    }
    bool IsNamed(std::int32_t at, std::wstring_view name) {
        MoveTo(at);
        return name == L"*" || Same(document_.GetTagName(), name);
    }
    bool HasAttribute(std::int32_t at, std::wstring_view name) {
        MoveTo(at);
        for (std::int32_t index = 0;; ++index) {
            const std::wstring own = document_.GetAttributeNameAt(index);
            if (own.empty()) return false;
            if (Same(own, name)) return true;
        }
    }
    // ASCII letters fold up to the first equal character that isn't ASCII.
    bool Same(std::wstring_view one, std::wstring_view other) const {
        if ((document_.Flags() & kDocIgnoreCase) == 0 || one.size() != other.size()) {
            return one == other;
        }
        std::size_t at = 0;
        while (at < one.size() && Fold(one[at]) == Fold(other[at]) && one[at] < 128) ++at;
        return one.substr(at) == other.substr(at);
    }
    static wchar_t Fold(wchar_t unit) {
        return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    }
    void MoveTo(std::int32_t at) { document_.ResetPosition(0, at, 0); }

    XmlOffsetDocument& document_;
    const XmlPath& path_;
};

struct Position {
    std::int32_t parent;
    std::int32_t current;
    std::int32_t child;

    bool operator==(const Position&) const = default;
};

Position PositionOf(const XmlOffsetDocument& document) {
    return {document.ParentPosition(), document.CurrentPosition(), document.ChildPosition()};
}

// What a search from the position has to find; `below` is 0 for the search of siblings.
std::int32_t Expected(XmlOffsetDocument& document, const XmlPath& path, std::int32_t parent,
                      std::int32_t current, std::int32_t below) {
    PlainSearch search(document, path);
    if (path.IsBad()) return 0;
    const std::int32_t level = current != 0 ? search.Next(current) : search.FirstChild(parent);
    switch (path.Type()) {
    case PathType::Any:
        return level;
    case PathType::Absolute:
        return search.Among(search.FirstChild(0));
    case PathType::Below:
        return search.Below(current != 0 ? current : parent, below);
    default:
        return search.Among(level);
    }
}

void FindSibling(XmlOffsetDocument& document, const wchar_t* path) {
    const Position before = PositionOf(document);
    const std::int32_t expected =
        Expected(document, XmlPath(path), before.parent, before.current, 0);
    document.ResetPosition(before.parent, before.current, before.child);
    const bool found = document.FindElement(path);
    Require(found == (expected != 0), "a path matches what a plain search matches");
    Require(found || PositionOf(document) == before, "a search without a match moves nothing");
    if (!found) return;
    const auto parent = (*document.State().records)[expected].parent;
    Require(PositionOf(document) == Position{static_cast<std::int32_t>(parent), expected, 0},
            "and the position is the same");
}

void FindChild(XmlOffsetDocument& document, const wchar_t* path) {
    if (document.CurrentPosition() == 0 && !document.FindElement()) return;
    const Position before = PositionOf(document);
    const std::int32_t expected =
        Expected(document, XmlPath(path), before.current, before.child, before.current);
    document.ResetPosition(before.parent, before.current, before.child);
    const bool found = document.FindChildElement(path);
    Require(found == (expected != 0), "a path matches below what a plain search matches");
    Require(found || PositionOf(document) == before, "a search without a match moves nothing");
    Require(!found || document.ChildPosition() == expected, "and its child is that one");
}

void RequireViewsInPath(const std::wstring& path) {
    const auto text = std::make_unique<wchar_t[]>(path.size() + 1);
    path.copy(text.get(), path.size());
    const XmlPath steps(text.get());
    const auto within = [&](std::wstring_view view) {
        return view.empty() ||
               (view.data() >= text.get() && view.data() + view.size() <= text.get() + path.size());
    };
    for (std::size_t i = 0; i < steps.StepCount(); ++i) {
        Require(within(steps[i].name) && within(steps[i].testName) && within(steps[i].value),
                "a step is a view of the path");
    }
    Require(within(steps.Attribute()), "so is the attribute");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    XmlOffsetDocument document;
    document.SetFlags(input.Pick(kModes));
    const std::uint32_t start = input.Byte();
    std::vector<std::wstring> paths(1 + input.Below(3));
    for (std::wstring& path : paths) path = input.Name(kLongestPath);
    document.SetText(std::wstring_view(input.Rest()));
    const auto records = static_cast<std::uint32_t>(document.State().nextFreePos);
    const auto current = static_cast<std::int32_t>(start / 2 % records);
    const auto parent = static_cast<std::int32_t>((*document.State().records)[current].parent);
    document.ResetPosition(parent, current, 0);
    for (const std::wstring& path : paths) {
        RequireViewsInPath(path);
        start % 2 == 0 ? FindSibling(document, path.c_str()) : FindChild(document, path.c_str());
    }
    return 0;
}

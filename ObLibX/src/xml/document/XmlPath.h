// A path: how a client writes which element to find.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Where a search begins.
enum class PathType {
    Any = 0,      // empty or null: the next element, whatever its name
    Relative = 1, // name/name: from the current level on
    Absolute = 2, // /name/name: from the root
    Below = 3,    // //name: anywhere below, depth first; one step only
};

// A condition for an element besides its name.
enum class StepTest {
    None,
    Count,     // name[N]: it is the N-th match, from 1
    Attribute, // name[@attribute]: it has the attribute
    Value,     // name[@attribute=value]: with this value
    Child,     // name[child]: it has a child of that name
};

// One step. Views into the caller's path.
struct PathStep {
    std::wstring_view name; // "*" is any name
    StepTest test = StepTest::None;
    std::uint32_t count = 1;    // of Count; at most the highest value
    std::wstring_view testName; // of the attribute or the child
    std::wstring_view value;    // of Value, without its quotes, not decoded

    static bool IsAnyName(std::wstring_view name) { return name == L"*"; }
};

// A path that is parsed once and can be resolved any number of times. It points into the caller's
// text, which must outlive it. Allocates only for a path of more than kFewSteps steps, and may then
// throw std::bad_alloc. One bad step makes the whole path bad: the path matches nothing.
//
//   path  = "" | steps | "/" steps | "//" step
//   steps = step *( "/" step ) [ "/@" name ]
//   step  = name [ "[" test "]" ]
//   test  = N | "@" name [ "=" value ] | name       N begins with 1 to 9
//   value = '"' ... '"' | "'" ... "'" | anything up to "]"
class XmlPath {
public:
    static constexpr std::size_t kFewSteps = 4;

    explicit XmlPath(const wchar_t* path);

    bool IsBad() const { return bad_; }
    PathType Type() const { return type_; }
    std::size_t StepCount() const { return count_; }
    const PathStep& operator[](std::size_t index) const {
        return index < kFewSteps ? few_[index] : more_[index - kFewSteps];
    }
    // The attribute that the last step addresses; empty for the path of an element.
    std::wstring_view Attribute() const { return attribute_; }
    // Whether a step has a Child test, which stream reading can't decide.
    bool HasChildTest() const;

private:
    void Add(const PathStep& step);

    PathType type_ = PathType::Any;
    bool bad_ = false;
    std::size_t count_ = 0;
    std::array<PathStep, kFewSteps> few_;
    std::vector<PathStep> more_;
    std::wstring_view attribute_;
};

// ---- Whether an element matches a step

// Compares the name and the test of the step; the caller counts for Count. `position` is an
// element's.
bool Matches(const DocumentState& document, std::int32_t position, const PathStep& step);

// Whether the element's start tag has the attribute.
bool HasAttribute(const DocumentState& document, std::int32_t position, std::wstring_view name);

} // namespace ObLibX

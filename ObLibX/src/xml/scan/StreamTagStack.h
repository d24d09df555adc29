// The tags that are open at an offset of a file, and how many children of each name they have had
// so far: nothing else is stored of the elements that a stream has read.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ObLibX {

// Names are in slots, 7 at first, doubled when they are full. A slot belongs to a name at a level:
// the next element of that name at that level uses it again, and it is removed when the parent
// ends. A hash of 23 buckets, by the sum of a name's units, finds the slots, so that depth and
// count are known without reading anything twice. Memory grows with the depth, and with the number
// of different names among siblings. One thread. Throws std::bad_alloc and leaves the stack as it
// was.
class StreamTagStack {
public:
    static constexpr std::uint32_t kBuckets = 23;

    // Names compare ignoring ASCII case from here on. Only on an empty stack.
    void IgnoreCase(bool ignore) { ignoreCase_ = ignore; }

    // A child of the innermost open element begins; it is the innermost one now.
    void Push(std::wstring_view name);
    // The innermost open element ends, and the counts of its children are dropped.
    void Pop();
    void Clear();

    std::uint32_t Depth() const { return static_cast<std::uint32_t>(open_.size()); }
    // The name at a depth, from 1 on.
    std::wstring_view NameAt(std::uint32_t depth) const;
    bool IsNamed(std::uint32_t depth, std::wstring_view name) const;
    // The depth of the innermost open element of that name, 0 when there is none.
    std::uint32_t FindOpen(std::wstring_view name) const;

    // Children so far of the element that is open at `depth`, 0 for the document itself: of that
    // name, or of any.
    std::uint32_t CountChildren(std::uint32_t depth, std::wstring_view name) const;
    std::uint32_t CountAllChildren(std::uint32_t depth) const;

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Slot {
        std::uint32_t level; // of the element: 1 for a root element
        std::uint32_t nameOffset;
        std::uint32_t nameLength;
        std::uint32_t nextInBucket; // an older one, at this level or above it
        std::uint32_t count;        // elements of this name at this level, the present one included
    };
    struct Open {
        std::uint32_t slot;
        std::uint32_t children;
    };

    std::uint32_t BucketOf(std::wstring_view name) const;
    std::wstring_view NameOf(const Slot& slot) const;
    bool Same(std::wstring_view one, std::wstring_view other) const;
    bool IsOpen(std::uint32_t slot) const;
    std::uint32_t FindSlot(std::uint32_t level, std::wstring_view name) const;
    std::uint32_t AddSlot(std::uint32_t level, std::wstring_view name);

    std::vector<Slot> slots_; // children's slots have higher indices than their parents'
    std::vector<Open> open_;
    std::wstring names_; // of all slots, one after the other
    std::array<std::uint32_t, kBuckets> buckets_ = EmptyBuckets();
    std::uint32_t rootChildren_ = 0;
    bool ignoreCase_ = false;

    static constexpr std::array<std::uint32_t, kBuckets> EmptyBuckets() {
        std::array<std::uint32_t, kBuckets> buckets{};
        buckets.fill(kNone);
        return buckets;
    }
};

} // namespace ObLibX

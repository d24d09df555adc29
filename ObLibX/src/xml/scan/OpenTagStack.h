// The tags that are open at an offset of the text, the innermost on top.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ObLibX {

// All names are in one string, so that pushing a tag allocates nothing while the capacity of the
// string and of the slots suffices: 7 slots at first, doubled when they are full. One thread.
// Throws std::bad_alloc and leaves the stack as it was. A stream has StreamTagStack, which also
// counts.
class OpenTagStack {
public:
    struct Entry {
        std::uint32_t nameOffset; // in names_
        std::uint32_t nameLength;
        std::uint32_t record; // of the element
    };

    void Push(std::wstring_view name, std::uint32_t record);
    void Pop();
    void Clear();
    std::uint32_t Depth() const { return static_cast<std::uint32_t>(entries_.size()); }
    const Entry& At(std::uint32_t index) const { return entries_[index]; } // 0 is the outermost
    std::wstring_view NameAt(std::uint32_t index) const;

private:
    std::vector<Entry> entries_;
    std::wstring names_;
};

} // namespace ObLibX

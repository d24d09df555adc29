#include "ObLibX/src/xml/scan/OpenTagStack.h"

namespace ObLibX {
namespace {

constexpr std::size_t kFirstSlots = 7;

} // namespace

void OpenTagStack::Push(std::wstring_view name, std::uint32_t record) {
    if (entries_.size() == entries_.capacity()) {
        entries_.reserve(entries_.empty() ? kFirstSlots : 2 * entries_.size());
    }
    const auto offset = static_cast<std::uint32_t>(names_.size());
    names_.append(name);
    entries_.push_back({offset, static_cast<std::uint32_t>(name.size()), record});
}

void OpenTagStack::Pop() {
    names_.resize(entries_.back().nameOffset);
    entries_.pop_back();
}

void OpenTagStack::Clear() {
    entries_.clear();
    names_.clear();
}

std::wstring_view OpenTagStack::NameAt(std::uint32_t index) const {
    const Entry& entry = entries_[index];
    return std::wstring_view(names_).substr(entry.nameOffset, entry.nameLength);
}

} // namespace ObLibX

#include "ObLibX/src/xml/scan/StreamTagStack.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"

namespace ObLibX {
namespace {

constexpr std::size_t kFirstSlots = 7;

} // namespace

void StreamTagStack::Push(std::wstring_view name) {
    const std::uint32_t level = Depth() + 1;
    if (open_.size() == open_.capacity()) {
        open_.reserve(open_.empty() ? kFirstSlots : 2 * open_.size());
    }
    std::uint32_t slot = FindSlot(level, name);
    if (slot == kNone) slot = AddSlot(level, name);
    ++slots_[slot].count;
    ++(open_.empty() ? rootChildren_ : open_.back().children);
    open_.push_back({slot, 0});
}

void StreamTagStack::Pop() {
    open_.pop_back();
    const std::uint32_t levelOfChildren = Depth() + 1;
    while (!slots_.empty() && slots_.back().level > levelOfChildren) {
        const Slot& last = slots_.back();
        // The newest slot of a bucket is its first.
        buckets_[BucketOf(NameOf(last))] = last.nextInBucket;
        names_.resize(last.nameOffset);
        slots_.pop_back();
    }
}

void StreamTagStack::Clear() {
    slots_.clear();
    open_.clear();
    names_.clear();
    buckets_ = EmptyBuckets();
    rootChildren_ = 0;
}

std::wstring_view StreamTagStack::NameAt(std::uint32_t depth) const {
    return NameOf(slots_[open_[depth - 1].slot]);
}

bool StreamTagStack::IsNamed(std::uint32_t depth, std::wstring_view name) const {
    return Same(NameAt(depth), name);
}

std::uint32_t StreamTagStack::FindOpen(std::wstring_view name) const {
    if (Depth() != 0 && IsNamed(Depth(), name)) return Depth();
    std::uint32_t slot = buckets_[BucketOf(name)];
    while (slot != kNone && !(IsOpen(slot) && Same(NameOf(slots_[slot]), name))) {
        slot = slots_[slot].nextInBucket;
    }
    return slot == kNone ? 0 : slots_[slot].level;
}

std::uint32_t StreamTagStack::CountChildren(std::uint32_t depth, std::wstring_view name) const {
    const std::uint32_t slot = FindSlot(depth + 1, name);
    return slot == kNone ? 0 : slots_[slot].count;
}

std::uint32_t StreamTagStack::CountAllChildren(std::uint32_t depth) const {
    return depth == 0 ? rootChildren_ : open_[depth - 1].children;
}

std::uint32_t StreamTagStack::BucketOf(std::wstring_view name) const {
    std::uint32_t sum = 0;
    for (const wchar_t unit : name) {
        sum += static_cast<std::uint16_t>(ignoreCase_ ? FoldAscii(unit) : unit);
    }
    return sum % kBuckets;
}

std::wstring_view StreamTagStack::NameOf(const Slot& slot) const {
    return std::wstring_view(names_).substr(slot.nameOffset, slot.nameLength);
}

bool StreamTagStack::Same(std::wstring_view one, std::wstring_view other) const {
    return one.size() == other.size() &&
           SameName(one.data(), other.data(), one.size(), ignoreCase_);
}

bool StreamTagStack::IsOpen(std::uint32_t slot) const {
    const std::uint32_t level = slots_[slot].level;
    return level <= Depth() && open_[level - 1].slot == slot;
}

// A bucket's chain goes from inner levels to outer ones, so the search ends at the first outer
// slot.
std::uint32_t StreamTagStack::FindSlot(std::uint32_t level, std::wstring_view name) const {
    std::uint32_t slot = buckets_[BucketOf(name)];
    while (slot != kNone && slots_[slot].level >= level) {
        if (slots_[slot].level == level && Same(NameOf(slots_[slot]), name)) return slot;
        slot = slots_[slot].nextInBucket;
    }
    return kNone;
}

std::uint32_t StreamTagStack::AddSlot(std::uint32_t level, std::wstring_view name) {
    if (slots_.size() == slots_.capacity()) {
        slots_.reserve(slots_.empty() ? kFirstSlots : 2 * slots_.size());
    }
    const auto offset = static_cast<std::uint32_t>(names_.size());
    names_.append(name);
    std::uint32_t& bucket = buckets_[BucketOf(name)];
    const auto slot = static_cast<std::uint32_t>(slots_.size());
    slots_.push_back({level, offset, static_cast<std::uint32_t>(name.size()), bucket, 0});
    bucket = slot;
    return slot;
}

} // namespace ObLibX

#include "ObLibX/src/dialog/FontSubstitution.h"

namespace ObLibX {

using ObLib::ObString;

ObString FontKey(const FontRequest& font) {
    ObString name = font.name;
    name.ToLower();
    ObString key;
    key.Format(L"%ls/%d/%d/%d", name.CStr(), font.size, font.weight, font.style);
    return key;
}

void FontSubstitution::Add(const ObString& origName, std::int32_t origSize,
                           const ObString& substName, std::int32_t substSize) {
    entries_.try_emplace(FontKey({origName, origSize}),
                         Entry{origName, origSize, substName, substSize});
}

const FontSubstitution::Entry* FontSubstitution::Find(const FontRequest& wanted) const {
    if (entries_.empty()) return nullptr;
    const auto exact = entries_.find(FontKey(wanted));
    if (exact != entries_.end()) return &exact->second;
    const Entry* anySize = nullptr;
    for (const auto& [key, entry] : entries_) {
        if (entry.origName.CompareNoCase(wanted.name) != 0) continue;
        if (entry.origSize == wanted.size) return &entry;
        if (entry.origSize == kAnyFontSize) anySize = &entry;
    }
    return anySize;
}

FontRequest FontSubstitution::Apply(const FontRequest& wanted) const {
    const Entry* const entry = Find(wanted);
    if (entry == nullptr) return wanted;
    const std::int32_t size = entry->origSize == kAnyFontSize ? wanted.size : entry->substSize;
    return {entry->substName, size, wanted.weight, wanted.style};
}

} // namespace ObLibX

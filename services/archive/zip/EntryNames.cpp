#include "services/archive/zip/EntryNames.h"

#include <algorithm>
#include <map>
#include <set>

#include "services/archive/Paths.h"

namespace obarchive {
namespace {

constexpr std::size_t kLongestName = 255; // UTF-16 units
// Leaves room for a number. What is longer after a name's last point is part of the name.
constexpr std::size_t kLongestExtension = 200;

struct NameParts {
    std::wstring stem;
    std::wstring extension; // with its point, or empty
};

// A point at the beginning begins a name, not an extension.
NameParts Split(const std::wstring& name) {
    const std::size_t point = name.rfind(L'.');
    if (point == std::wstring::npos || point == 0) return {name, {}};
    if (name.size() - point > kLongestExtension) return {name, {}};
    return {name.substr(0, point), name.substr(point)};
}

std::wstring Numbered(const NameParts& parts, unsigned number) {
    const std::wstring ending = L" (" + std::to_wstring(number) + L")" + parts.extension;
    std::wstring stem = parts.stem;
    if (stem.size() + ending.size() > kLongestName) {
        stem.resize(kLongestName - ending.size());
        const bool splitsPair = !stem.empty() && stem.back() >= 0xD800 && stem.back() <= 0xDBFF;
        if (splitsPair) stem.pop_back();
    }
    return stem + ending;
}

class NameGiver {
public:
    // True when the name was free.
    bool Take(const std::wstring& name) { return taken_.insert(name).second; }

    std::wstring TakeNumbered(const std::wstring& name) {
        const NameParts parts = Split(name);
        unsigned& last = lastNumber_.try_emplace(name, 1U).first->second;
        std::wstring numbered;
        do {
            numbered = Numbered(parts, ++last);
        } while (!Take(numbered));
        return numbered;
    }

private:
    std::set<std::wstring, LessIgnoringCase> taken_;
    std::map<std::wstring, unsigned, LessIgnoringCase> lastNumber_;
};

} // namespace

std::vector<std::wstring> UniqueEntryNames(const std::vector<std::wstring>& paths) {
    NameGiver giver;
    std::vector<std::wstring> names;
    std::vector<std::size_t> clashes;
    for (const std::wstring& path : paths) {
        names.push_back(WithoutLoneSurrogates(FileName(path)));
        if (!giver.Take(names.back())) clashes.push_back(names.size() - 1);
    }
    for (const std::size_t index : clashes) names[index] = giver.TakeNumbered(names[index]);
    return names;
}

} // namespace obarchive

#include "services/providers/storage/PartNotes.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/RegistryView.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/storage/RegistryValues.h"

namespace providers {
namespace {

constexpr wchar_t kProvider[] = L"Provider";
constexpr wchar_t kAccount[] = L"Account";
constexpr wchar_t kPath[] = L"Path";
constexpr std::size_t kLongest = 32'000; // characters of a text, as of a path

bool IsSound(const NotedPart& part) {
    return !part.path.empty() && part.path.size() <= kLongest && part.accountKey.size() <= kLongest;
}

// The path comes last: without it a note isn't seen.
bool Write(HKEY key, const NotedPart& part) {
    return WriteNumber(key, kProvider, part.providerId) &&
           WriteText(key, kAccount, part.accountKey) && WriteText(key, kPath, part.path);
}

std::optional<NotedPart> Read(HKEY key, const std::wstring& id) {
    const auto provider = ReadNumber(key, kProvider);
    auto account = ReadText(key, kAccount, kLongest);
    auto path = ReadText(key, kPath, kLongest);
    if (!provider || !account || !path || path->empty()) return {};
    if (*provider > std::numeric_limits<std::uint32_t>::max()) return {};
    return NotedPart{static_cast<std::uint32_t>(*provider), std::move(*account), std::move(*path),
                     id, 0};
}

} // namespace

PartNotes::PartNotes(const AccountBook& book)
    : hive_(book.Hive()), path_(book.Key() + L"\\Parts") {}

std::wstring PartNotes::Add(const NotedPart& part) const {
    std::wstring id = NewGuidText();
    if (!IsSound(part) || id.empty()) return {};
    const auto key = MakeNewKey(hive_, path_ + L'\\' + id);
    if (!key) return {};
    if (Write(key.Get(), part)) return id;
    RemoveKey(hive_, path_, id);
    return {};
}

void PartNotes::Remove(const std::wstring& id) const {
    if (IsGuidText(id)) RemoveKey(hive_, path_, id);
}

std::vector<NotedPart> PartNotes::OldAt(std::uint64_t time) const {
    std::vector<NotedPart> old;
    for (const OldKey& found : KeysWrittenBefore(hive_, path_, time - std::min(time, kOldPart))) {
        if (!IsGuidText(found.name)) continue;
        const auto key =
            ObLib::OpenRegistryKey(hive_, (path_ + L'\\' + found.name).c_str(), KEY_QUERY_VALUE);
        auto part = key ? Read(key.Get(), found.name) : std::nullopt;
        if (!part) {
            RemoveKey(hive_, path_, found.name);
            continue;
        }
        part->noted = found.written;
        old.push_back(std::move(*part));
    }
    std::ranges::sort(old, {}, &NotedPart::noted);
    return old;
}

bool PartNotes::HasAny() const { return !SubkeyNames(hive_, path_).empty(); }

PartNote::PartNote(const PartNotes& notes, const NotedPart& part) noexcept : notes_(notes) {
    ObLib::RanGuarded([&] { id_ = notes_.Add(part); });
}

void PartNote::Remove() noexcept {
    ObLib::RanGuarded([this] { notes_.Remove(std::exchange(id_, {})); });
}

} // namespace providers

#include "services/providers/storage/DeletionSchedule.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "ObLib/Src/Win32/RegistryView.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/storage/RegistryValues.h"

namespace providers {
namespace {

constexpr wchar_t kProvider[] = L"Provider";
constexpr wchar_t kAccount[] = L"Account";
constexpr wchar_t kPath[] = L"Path";
constexpr wchar_t kVersion[] = L"Version";
constexpr wchar_t kSize[] = L"Size";
constexpr wchar_t kDue[] = L"Due";
constexpr std::size_t kLongest = 32'000; // characters of a text, as of a path

bool IsSound(const ScheduledDeletion& deletion) {
    const StoredFile& file = deletion.file;
    return !file.path.empty() && !file.version.empty() && file.path.size() <= kLongest &&
           file.version.size() <= kLongest;
}

// The time comes last: without it a deletion isn't seen.
bool Write(HKEY key, const ScheduledDeletion& deletion) {
    return WriteNumber(key, kProvider, deletion.providerId) &&
           WriteText(key, kAccount, deletion.accountKey) &&
           WriteText(key, kPath, deletion.file.path) &&
           WriteText(key, kVersion, deletion.file.version) &&
           WriteNumber(key, kSize, deletion.file.size) && WriteNumber(key, kDue, deletion.due);
}

std::optional<ScheduledDeletion> Read(HKEY key, const std::wstring& id) {
    const auto provider = ReadNumber(key, kProvider);
    const auto account = ReadText(key, kAccount, kLongest);
    const auto path = ReadText(key, kPath, kLongest);
    const auto version = ReadText(key, kVersion, kLongest);
    const auto size = ReadNumber(key, kSize);
    const auto due = ReadNumber(key, kDue);
    if (!provider || !account || !path || !version || !size || !due) return {};
    if (*provider > std::numeric_limits<std::uint32_t>::max()) return {};
    ScheduledDeletion deletion{
        static_cast<std::uint32_t>(*provider), *account, {*path, {}, *version, *size}, *due, id};
    if (!IsSound(deletion)) return {};
    return deletion;
}

} // namespace

DeletionSchedule::DeletionSchedule(HKEY hive, std::wstring key)
    : hive_(hive), path_(std::move(key) + L"\\Deletions") {}

bool DeletionSchedule::Add(const ScheduledDeletion& deletion) const {
    const std::wstring id = NewGuidText();
    if (!IsSound(deletion) || id.empty()) return false;
    const auto key = MakeNewKey(hive_, path_ + L'\\' + id);
    if (!key) return false;
    if (Write(key.Get(), deletion)) return true;
    RemoveKey(hive_, path_, id);
    return false;
}

std::vector<ScheduledDeletion> DeletionSchedule::DueAt(std::uint64_t time) const {
    std::vector<ScheduledDeletion> due;
    for (const std::wstring& id : SubkeyNames(hive_, path_)) {
        if (!IsGuidText(id)) continue;
        const auto key =
            ObLib::OpenRegistryKey(hive_, (path_ + L'\\' + id).c_str(), KEY_QUERY_VALUE);
        const auto deletion = key ? Read(key.Get(), id) : std::nullopt;
        if (deletion && deletion->due <= time) due.push_back(*deletion);
    }
    std::ranges::sort(due, {}, &ScheduledDeletion::due);
    return due;
}

void DeletionSchedule::Remove(const ScheduledDeletion& deletion) const {
    if (IsGuidText(deletion.id)) RemoveKey(hive_, path_, deletion.id);
}

void DeletionSchedule::RemoveUnfinished(std::uint64_t time) const {
    RemoveUnfinishedKeys(hive_, path_, kDue, time);
}

bool DeletionSchedule::HasAny() const { return !SubkeyNames(hive_, path_).empty(); }

} // namespace providers

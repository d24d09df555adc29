// The local record of what the product was used for: a text file that the user can read. Nothing of
// it leaves the machine. docs/usage-record.md tells people what is in it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace obarchive {

// The policy value by which the administrator switches the record off: REG_SZ "1".
inline constexpr wchar_t kNoUsageRecordPolicy[] = L"NoUsageRecord";

// The record in one folder: `usage.txt`, and `usage.old.txt`, which holds what stood there before.
// Several processes may append at once; a line is written whole or not at all. Any thread.
class UsageRecord {
public:
    static constexpr std::uint64_t kSizeLimit = 256 * 1024; // bytes of each of the two files

    // Nothing is made before the first line. `folder` is without a trailing backslash.
    explicit UsageRecord(std::wstring folder, std::uint64_t sizeLimit = kSizeLimit);

    // Appends one line: the time, the event and its details, with tabs between them. What would
    // break the line becomes a blank, and very long texts are cut. False when the line isn't there:
    // no disk space, no folder, no right, or another program keeps the file. Nobody is told.
    bool Append(const SYSTEMTIME& utc, std::wstring_view event, std::wstring_view details) const;

private:
    bool MakeRoom(std::size_t bytes) const;

    std::wstring folder_;
    std::wstring current_;
    std::wstring older_;
    std::uint64_t sizeLimit_;
};

// Appends an event of now to the record of this user, below the local application data, unless the
// policy has switched it off. Null texts are empty ones. Never throws; every failure is silent.
void RecordUsage(const wchar_t* event, const wchar_t* details) noexcept;

// As RecordUsage, with the number of this process as details: it pairs a start with its end.
void RecordProcessUsage(const wchar_t* event) noexcept;

} // namespace obarchive

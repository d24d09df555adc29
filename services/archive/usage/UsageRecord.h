// The local record of what the product was used for: a text file that the user can read and that
// stays on the machine. docs/usage-record.md documents it for users.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace obarchive {

// The policy value by which the administrator switches the record off: "1".
inline constexpr wchar_t kNoUsageRecordPolicy[] = L"NoUsageRecord";

// The record in one folder: `usage.txt`, and `usage.old.txt` with the lines before those.
// Several processes may append at once; a line is written whole or not at all. Any thread.
class UsageRecord {
public:
    static constexpr std::uint64_t kSizeLimit = 256 * 1024; // bytes of each of the two files

    // No file or folder is created before the first line. `folder` is without a trailing backslash.
    explicit UsageRecord(std::wstring folder, std::uint64_t sizeLimit = kSizeLimit);

    // Appends one line: the time, the event and its details, with tabs between them. Control
    // characters become blanks, and very long texts are cut. Returns false when the line couldn't
    // be written: no disk space, no folder, no right, or another program has the file open. Shows
    // nothing.
    bool Append(const SYSTEMTIME& utc, std::wstring_view event, std::wstring_view details) const;

private:
    bool MakeRoom(std::size_t bytes) const;

    std::wstring folder_;
    std::wstring current_;
    std::wstring older_;
    std::uint64_t sizeLimit_;
};

// Appends an event with the present time to the record of this user, below the local application
// data, unless the policy has switched the record off. Null texts count as empty. Never throws;
// every failure is silent.
void RecordUsage(const wchar_t* event, const wchar_t* details) noexcept;

// As RecordUsage, with this process's number as details, by which a start and its end pair.
void RecordProcessUsage(const wchar_t* event) noexcept;

} // namespace obarchive

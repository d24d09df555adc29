// What uploads have under a temporary name, noted below the manager's registry key, so that a later
// session removes what a process that was killed has left.
//
//   KEY\Parts\<GUID>
//       Provider  REG_QWORD  id of the account's provider
//       Account   REG_SZ     key of the account, which may be logged out by then
//       Path      REG_SZ     of the file, as the provider understands it
//
// No link and no password is among them. The age of a note is that of its key.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "services/providers/storage/AccountBook.h"

namespace providers {

// From this age on a note isn't that of an upload that still runs; as TimeNow counts.
inline constexpr std::uint64_t kOldPart = 24 * 3600 * 10'000'000ULL;

struct NotedPart {
    std::uint32_t providerId = 0;
    std::wstring accountKey;
    std::wstring path;       // never shown
    std::wstring id = {};    // given by Add
    std::uint64_t noted = 0; // when, as TimeNow counts
};

// Opens the keys for each access and keeps nothing open in between. On any thread.
class PartNotes {
public:
    // Below the same key as the accounts.
    explicit PartNotes(const AccountBook& book);

    // The note's id; empty when it can't be written.
    std::wstring Add(const NotedPart& part) const;
    // Of an id that Add gave; nothing for an empty one.
    void Remove(const std::wstring& id) const;

    // Those that are older than kOldPart, oldest first. Removes what is as old and unreadable.
    std::vector<NotedPart> OldAt(std::uint64_t time) const;

    // Without looking whether any is old.
    bool HasAny() const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring path_;
};

// The note of one upload's temporary file: made before the file is, removed once the file certainly
// isn't there under that name. When it is destroyed without that, the note stays, and a later
// session looks after the file. On the upload's thread.
class PartNote {
public:
    // No note is a reason not to upload: without memory or a place in the registry there is none.
    PartNote(const PartNotes& notes, const NotedPart& part) noexcept;

    // The file got its own name, or was deleted, or was never made.
    void Remove() noexcept;

private:
    const PartNotes& notes_; // outlives the note
    std::wstring id_;
};

} // namespace providers

#include "services/providers/folder/FolderRename.h"

#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/folder/RepeatedStep.h"

namespace providers {
namespace {

// Whether a file is there, where that can be known.
enum class Presence : std::uint8_t { There, Absent, Unknown };

Presence Look(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return Presence::There;
    return GetLastError() == ERROR_FILE_NOT_FOUND ? Presence::Absent : Presence::Unknown;
}

// Which file has the name, where there is one. Without a version the file is known by the name that
// it no longer has.
RenameFault LookUp(const std::wstring& part, const std::wstring& target,
                   const std::wstring& version) {
    const Presence there = Look(target);
    if (there == Presence::Absent) return RenameFault::Failed;
    if (there == Presence::Unknown) return RenameFault::Unknown;
    if (!version.empty()) {
        const std::wstring found = VersionAt(target);
        if (found.empty()) return RenameFault::Unknown;
        return found == version ? RenameFault::None : RenameFault::Failed;
    }
    const Presence before = Look(part);
    if (before == Presence::Unknown) return RenameFault::Unknown;
    return before == Presence::Absent ? RenameFault::None : RenameFault::Failed;
}

RenameFault AskForAWhile(const std::wstring& part, const std::wstring& target,
                         const std::wstring& version, HANDLE cancelled,
                         const FolderPatience& patience) {
    for (const ULONGLONG start = GetTickCount64();;) {
        const RenameFault found = LookUp(part, target, version);
        if (found != RenameFault::Unknown || GetTickCount64() - start >= patience.rename ||
            WaitForSingleObject(cancelled, patience.pause) == WAIT_OBJECT_0) {
            return found;
        }
    }
}

} // namespace

RenameEnd RenamePart(const std::wstring& part, const std::wstring& target,
                     const std::wstring& version, HANDLE cancelled,
                     const FolderPatience& patience) {
    if (Repeat([&] { return MoveFileExW(part.c_str(), target.c_str(), 0) != FALSE; })) return {};
    const DWORD error = GetLastError();
    if (FolderErrorOf(error) == FolderError::Unreachable) {
        return {AskForAWhile(part, target, version, cancelled, patience), error};
    }
    if (!version.empty() && VersionAt(target) == version) return {};
    const bool isTaken = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    return {isTaken ? RenameFault::Taken : RenameFault::Failed, error};
}

} // namespace providers

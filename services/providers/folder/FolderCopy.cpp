#include "services/providers/folder/FolderCopy.h"

#include <algorithm>
#include <memory>

#include "services/providers/folder/FolderError.h"
#include "services/providers/worker/Event.h"

namespace providers {
namespace {

constexpr DWORD kBlock = 1 << 20; // bytes

bool SetPosition(HANDLE file, std::uint64_t position) {
    LARGE_INTEGER to{};
    to.QuadPart = static_cast<LONGLONG>(position);
    return SetFilePointerEx(file, to, nullptr, FILE_BEGIN) != FALSE;
}

CopyEnd TargetFailed() { return {CopyFault::Target, GetLastError()}; }

bool MayComeBack(const CopyEnd& end) {
    return end.fault == CopyFault::Target && FolderErrorOf(end.error) == FolderError::Unreachable;
}

} // namespace

CopyEnd FolderCopy::Run() {
    for (;;) {
        const CopyEnd end = GoOn();
        if (!MayComeBack(end) || !Resume()) return end;
    }
}

CopyEnd FolderCopy::GoOn() {
    const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
    for (;;) {
        if (IsSet(progress_.Cancelled())) return {CopyFault::Cancelled, 0};
        DWORD size = 0;
        DWORD written = 0;
        if (!calls_.Run([&] { return ReadFile(source_, block.get(), kBlock, &size, nullptr); })) {
            return {CopyFault::Source, GetLastError()};
        }
        if (size == 0) break;
        if (!calls_.Run(
                [&] { return WriteFile(part_.Handle(), block.get(), size, &written, nullptr); })) {
            return TargetFailed();
        }
        if (written != size) return {CopyFault::Target, ERROR_DISK_FULL};
        sent_ += size;
        if (sent_ - stored_ >= kStoredAtOnce) {
            if (const CopyEnd end = Store(); end.fault != CopyFault::None) return end;
        }
        progress_.Show(sent_, total_);
    }
    const CopyEnd end = Store();
    return end.fault == CopyFault::None ? CheckLength() : end;
}

CopyEnd FolderCopy::Store() {
    if (!calls_.Run([&] { return FlushFileBuffers(part_.Handle()); })) return TargetFailed();
    stored_ = sent_;
    return {};
}

CopyEnd FolderCopy::CheckLength() {
    LARGE_INTEGER length{};
    if (!GetFileSizeEx(part_.Handle(), &length)) return TargetFailed();
    const bool isWhole = sent_ == total_ && static_cast<std::uint64_t>(length.QuadPart) == total_;
    return {isWhole ? CopyFault::None : CopyFault::Length, 0};
}

// The time is counted from the first break at this place, so that a folder that comes and goes
// doesn't keep the upload for ever.
bool FolderCopy::Resume() {
    if (!broken_ || stored_ > storedAtBreak_) broken_ = GetTickCount64();
    storedAtBreak_ = std::max(storedAtBreak_, stored_);
    while (GetTickCount64() - *broken_ < patience_.resume) {
        if (WaitForSingleObject(progress_.Cancelled(), patience_.pause) == WAIT_OBJECT_0) {
            return false;
        }
        if (OpenWhereStored()) return true;
        const DWORD error = GetLastError();
        // The server may not have noticed yet that the file was closed.
        const bool mayComeBack =
            error == ERROR_SHARING_VIOLATION ||
            (error != ERROR_FILE_NOT_FOUND && FolderErrorOf(error) == FolderError::Unreachable);
        if (!mayComeBack) return false;
    }
    return false;
}

// The part may have lost what was sent, or have more than was reported: it is cut.
bool FolderCopy::OpenWhereStored() {
    LARGE_INTEGER length{};
    const DWORD error = part_.OpenAgain(calls_);
    if (error != 0) return SetLastError(error), false;
    if (!calls_.Run([&] { return GetFileSizeEx(part_.Handle(), &length); })) return false;
    const std::uint64_t at = std::min(static_cast<std::uint64_t>(length.QuadPart), stored_);
    if (!SetPosition(part_.Handle(), at) ||
        !calls_.Run([&] { return SetEndOfFile(part_.Handle()); }) || !SetPosition(source_, at)) {
        return false;
    }
    sent_ = stored_ = at;
    progress_.Show(sent_, total_);
    return true;
}

} // namespace providers

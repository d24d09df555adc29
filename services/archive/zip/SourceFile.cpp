#include "services/archive/zip/SourceFile.h"

#include <algorithm>
#include <ctime>

namespace obarchive {
namespace {

// A read is no larger, so that a slow disk doesn't keep the run from reporting how far it is.
constexpr std::size_t kPiece = 256 * 1024;

std::uint64_t Join(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

std::int64_t LocalTime(int year, int month, int day, int hour, int minute, int second) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

// Two small questions instead of the one for everything, which asks for the volume too and takes
// many times as long.
bool Measure(HANDLE file, SourceFacts& now) {
    FILE_BASIC_INFO basic{};
    LARGE_INTEGER size{};
    if (!GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic)) return false;
    if (!GetFileSizeEx(file, &size)) return false;
    now.size = static_cast<std::uint64_t>(size.QuadPart);
    now.lastWrite.dwLowDateTime = basic.LastWriteTime.LowPart;
    now.lastWrite.dwHighDateTime = static_cast<DWORD>(basic.LastWriteTime.HighPart);
    return true;
}

// Of the file that a link leads to. The folder's own entry shows the link: no size, another time.
bool MeasureLinked(const std::wstring& path, SourceFacts& facts) {
    const ObLib::UniqueKernelHandle file(CreateFileW(
        path.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, 0, nullptr));
    return file && Measure(file.Get(), facts);
}

} // namespace

bool SourceFile::Open(const std::wstring& path, SourceFacts& facts, bool pinned) {
    run_.file = path;
    total_ = 0;
    // The old handle is closed first: a file that was deleted meanwhile vanishes with its last
    // handle, and until then opening it fails with "access denied".
    file_.Reset();
    file_ = ObLib::UniqueKernelHandle(CreateFileW(
        path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    // Measured again: what counts is the file at the moment that its reading begins.
    SourceFacts now;
    if (!file_ || !Measure(file_.Get(), now)) {
        run_.Fail(SourceFailure(GetLastError()), run_.file);
        return false;
    }
    const bool sameTime = CompareFileTime(&now.lastWrite, &facts.lastWrite) == 0;
    const bool same = now.size == facts.size;
    // The header before the data contains the size already.
    if (!same || (pinned && !sameTime)) run_.Fail(ZipResult::SourceChanged, run_.file);
    facts.lastWrite = now.lastWrite;
    facts_ = facts;
    return run_.failure == ZipResult::Ok;
}

bool SourceFile::ConfirmEnd() {
    SourceFacts now;
    const bool unchanged = Measure(file_.Get(), now) && now.size == facts_.size &&
                           CompareFileTime(&now.lastWrite, &facts_.lastWrite) == 0;
    if (!unchanged) run_.Fail(ZipResult::SourceChanged, run_.file);
    return unchanged;
}

bool SourceFile::ReadPiece(std::uint8_t* data, std::size_t size, DWORD& read) {
    if (!ReadFile(file_.Get(), data, static_cast<DWORD>(size), &read, nullptr)) {
        run_.Fail(SourceFailure(GetLastError()), run_.file);
        return false;
    }
    if (read == 0) run_.Fail(ZipResult::SourceChanged, run_.file); // it was cut
    total_ += read;
    return read != 0;
}

bool SourceFile::Read(ByteBuffer& bytes, std::size_t most, bool counted) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(most, Left()));
    for (std::size_t at = 0; at < wanted;) {
        DWORD read = 0;
        if (!ReadPiece(bytes.Data() + at, std::min(kPiece, wanted - at), read)) return false;
        at += read;
        if (counted) run_.bytesRead += read;
        if (!run_.Report()) return false;
    }
    return bytes.Resize(wanted) && (!IsAtEnd() || ConfirmEnd());
}

bool ReadSourceFacts(const std::wstring& path, SourceFacts& facts, RunState& run) {
    WIN32_FILE_ATTRIBUTE_DATA found{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &found)) {
        run.Fail(SourceFailure(GetLastError()), path);
        return false;
    }
    if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        run.Fail(ZipResult::SourceUnreadable, path);
        return false;
    }
    if (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
        if (MeasureLinked(path, facts)) return true;
        run.Fail(SourceFailure(GetLastError()), path);
        return false;
    }
    facts.size = Join(found.nFileSizeHigh, found.nFileSizeLow);
    facts.lastWrite = found.ftLastWriteTime;
    return true;
}

std::int64_t ZipTime(const FILETIME& time) {
    constexpr std::int64_t kTicksASecond = 10'000'000;
    constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
    const auto ticks = static_cast<std::int64_t>(Join(time.dwHighDateTime, time.dwLowDateTime));
    static const std::int64_t first = LocalTime(1980, 1, 1, 0, 0, 0);
    static const std::int64_t last = LocalTime(2107, 12, 31, 23, 59, 58);
    return std::clamp(ticks / kTicksASecond - kSecondsTo1970, first, last);
}

} // namespace obarchive

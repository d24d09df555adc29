#include "services/archive/SourceFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obarchive {
namespace {

// The library reads 8 KiB at a time; the disk is asked for more.
constexpr std::size_t kPiece = 256 * 1024;

// The library foresees the 64-bit form of an entry by its size, without the few bytes that
// encryption adds. For sizes just below that border the size isn't told, and the entry gets the
// 64-bit form for certain.
constexpr std::uint64_t kZip64Border = 4293656963;
constexpr std::uint64_t kEncryptionSurplus = 64;

std::uint64_t Join(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

// Owned by the library, which ends it with ZIP_SOURCE_FREE.
class SourceFile {
public:
    SourceFile(const std::wstring& path, const SourceFacts& facts, RunState& run)
        : path_(path), facts_(facts), run_(run) {
        zip_error_init(&error_);
    }
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;
    ~SourceFile() { zip_error_fini(&error_); }

    static zip_int64_t Serve(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command);

private:
    zip_int64_t Do(void* data, zip_uint64_t length, zip_source_cmd_t command);
    zip_int64_t Open();
    zip_int64_t Read(void* data, zip_uint64_t length);
    zip_int64_t Stat(void* data, zip_uint64_t length);
    void Close();
    bool Refill();
    bool IsUnchanged();
    bool Report();
    zip_int64_t Fail(ZipResult result, int libraryError);

    std::wstring path_;
    SourceFacts facts_;
    RunState& run_;
    zip_error_t error_;
    ObLib::UniqueKernelHandle file_;
    std::vector<std::uint8_t> buffer_;
    std::size_t used_ = 0;   // bytes of the buffer already handed over
    std::size_t filled_ = 0; // bytes of the buffer that hold data
    std::uint64_t total_ = 0;
    bool ended_ = false;
};

zip_int64_t SourceFile::Fail(ZipResult result, int libraryError) {
    run_.Fail(result, path_);
    zip_error_set(&error_, libraryError, EIO);
    return -1;
}

zip_int64_t SourceFile::Open() {
    file_ = ObLib::UniqueKernelHandle(CreateFileW(
        path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file_) return Fail(SourceFailure(GetLastError()), ZIP_ER_OPEN);
    // Measured again: what counts is the file at the moment that its reading begins.
    BY_HANDLE_FILE_INFORMATION now{};
    if (!GetFileInformationByHandle(file_.Get(), &now)) {
        return Fail(SourceFailure(GetLastError()), ZIP_ER_OPEN);
    }
    const bool same = Join(now.nFileSizeHigh, now.nFileSizeLow) == facts_.size;
    // The size stands in the header already that was written in front of the data.
    if (!same) return Fail(ZipResult::SourceChanged, ZIP_ER_CHANGED);
    facts_.lastWrite = now.ftLastWriteTime;
    // One byte more than the file, so that its end shows without a second piece.
    buffer_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, facts_.size + 1)));
    used_ = filled_ = 0;
    total_ = 0;
    ended_ = false;
    return 0;
}

bool SourceFile::IsUnchanged() {
    BY_HANDLE_FILE_INFORMATION now{};
    if (!GetFileInformationByHandle(file_.Get(), &now)) return false;
    return total_ == facts_.size && Join(now.nFileSizeHigh, now.nFileSizeLow) == facts_.size &&
           CompareFileTime(&now.ftLastWriteTime, &facts_.lastWrite) == 0;
}

// Nothing may throw through the library's C code.
bool SourceFile::Report() {
    if (!run_.progress || !*run_.progress) return true;
    try {
        return (*run_.progress)({path_, run_.bytesRead});
    } catch (...) {
        run_.Fail(ZipResult::Unexpected);
        return false;
    }
}

bool SourceFile::Refill() {
    DWORD read = 0;
    if (!ReadFile(file_.Get(), buffer_.data(), static_cast<DWORD>(buffer_.size()), &read,
                  nullptr)) {
        return Fail(SourceFailure(GetLastError()), ZIP_ER_READ) == 0;
    }
    used_ = 0;
    filled_ = read;
    total_ += read;
    run_.bytesRead += read;
    ended_ = read == 0;
    // A file that grows as fast as it is read would never end.
    const bool changed = ended_ ? !IsUnchanged() : total_ > facts_.size;
    if (changed) return Fail(ZipResult::SourceChanged, ZIP_ER_CHANGED) == 0;
    if (!Report()) return Fail(ZipResult::Cancelled, ZIP_ER_CANCELLED) == 0;
    return true;
}

zip_int64_t SourceFile::Read(void* data, zip_uint64_t length) {
    if (used_ == filled_ && !ended_ && !Refill()) return -1;
    const std::size_t count =
        std::min(filled_ - used_, static_cast<std::size_t>(std::min<zip_uint64_t>(length, kPiece)));
    std::memcpy(data, buffer_.data() + used_, count);
    used_ += count;
    return static_cast<zip_int64_t>(count);
}

void SourceFile::Close() {
    file_.Reset();
    std::vector<std::uint8_t>().swap(buffer_);
}

zip_int64_t SourceFile::Stat(void* data, zip_uint64_t length) {
    zip_stat_t stat;
    if (length < sizeof stat) return Fail(ZipResult::EngineFailed, ZIP_ER_INVAL);
    zip_stat_init(&stat);
    stat.mtime = static_cast<time_t>(ZipTime(facts_.lastWrite));
    stat.valid = ZIP_STAT_MTIME;
    const bool nearBorder =
        facts_.size <= kZip64Border && facts_.size > kZip64Border - kEncryptionSurplus;
    if (!nearBorder) {
        stat.size = facts_.size;
        stat.valid |= ZIP_STAT_SIZE;
    }
    std::memcpy(data, &stat, sizeof stat);
    return sizeof stat;
}

zip_int64_t SourceFile::Do(void* data, zip_uint64_t length, zip_source_cmd_t command) {
    switch (command) {
    case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE,
                                              ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE,
                                              ZIP_SOURCE_SUPPORTS, -1);
    case ZIP_SOURCE_OPEN:
        return Open();
    case ZIP_SOURCE_READ:
        return Read(data, length);
    case ZIP_SOURCE_CLOSE:
        Close();
        return 0;
    case ZIP_SOURCE_STAT:
        return Stat(data, length);
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&error_, data, length);
    default:
        zip_error_set(&error_, ZIP_ER_OPNOTSUPP, 0);
        return -1;
    }
}

zip_int64_t SourceFile::Serve(void* self, void* data, zip_uint64_t length,
                              zip_source_cmd_t command) {
    auto* const source = static_cast<SourceFile*>(self);
    if (command == ZIP_SOURCE_FREE) {
        delete source;
        return 0;
    }
    try {
        return source->Do(data, length, command);
    } catch (const std::bad_alloc&) {
        return source->Fail(ZipResult::OutOfMemory, ZIP_ER_MEMORY);
    }
}

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

} // namespace

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

zip_source_t* MakeSource(const std::wstring& path, const SourceFacts& facts, RunState& run,
                         zip_error_t* error) {
    auto file = std::make_unique<SourceFile>(path, facts, run);
    zip_source_t* source = zip_source_function_create(&SourceFile::Serve, file.get(), error);
    // From here on the library ends it.
    if (source) static_cast<void>(file.release());
    return source;
}

} // namespace obarchive

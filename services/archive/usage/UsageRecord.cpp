#include "services/archive/usage/UsageRecord.h"

#include <shlobj.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "services/archive/Paths.h"
#include "services/archive/policy/MachinePolicy.h"

namespace obarchive {
namespace {

constexpr wchar_t kFolderBelowAppData[] = L"\\Tavi Ren Computing\\Ombrix";
constexpr DWORD kLongestWait = 250;        // milliseconds; a usage line isn't worth a longer wait
constexpr std::size_t kLongestText = 1000; // UTF-16 units of an event or its details

// One writer at a time among all processes and sessions of the user. The mutex's name contains a
// hash of the folder, so that users don't wait for each other.
class WriterLock {
public:
    explicit WriterLock(const std::wstring& folder) {
        constexpr std::uint64_t kBasis = 14695981039346656037U; // FNV-1a
        constexpr std::uint64_t kPrime = 1099511628211U;
        std::uint64_t hash = kBasis;
        for (const wchar_t unit : folder) hash = (hash ^ towlower(unit)) * kPrime;
        wchar_t name[64];
        _snwprintf(name, 64, L"Global\\OmbrixUsageRecord-%016I64x", hash);
        mutex_ = ObLib::UniqueKernelHandle(CreateMutexW(nullptr, FALSE, name));
        if (!mutex_) return;
        const DWORD wait = WaitForSingleObject(mutex_.Get(), kLongestWait);
        // A writer that died while it had the mutex has lost its own line at most.
        held_ = wait == WAIT_OBJECT_0 || wait == WAIT_ABANDONED;
    }
    ~WriterLock() {
        if (held_) ReleaseMutex(mutex_.Get());
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    bool IsHeld() const { return held_; }

private:
    ObLib::UniqueKernelHandle mutex_;
    bool held_ = false;
};

// One field of a line: without tabs, line ends, control characters and halves of surrogate pairs.
std::wstring Field(std::wstring_view text) {
    std::wstring field = WithoutLoneSurrogates(text.substr(0, kLongestText));
    const auto breaksLine = [](wchar_t unit) {
        constexpr wchar_t kLineSeparator = 0x2028;
        constexpr wchar_t kParagraphSeparator = 0x2029;
        return unit < L' ' || (unit >= 0x7F && unit <= 0x9F) || unit == kLineSeparator ||
               unit == kParagraphSeparator;
    };
    std::replace_if(field.begin(), field.end(), breaksLine, L' ');
    return field;
}

std::string Line(const SYSTEMTIME& utc, std::wstring_view event, std::wstring_view details) {
    wchar_t time[32];
    _snwprintf(time, 32, L"%04u-%02u-%02uT%02u:%02u:%02uZ", utc.wYear, utc.wMonth, utc.wDay,
               utc.wHour, utc.wMinute, utc.wSecond);
    return ObLib::ToUtf8(std::wstring(time) + L'\t' + Field(event) + L'\t' + Field(details) +
                         L"\r\n");
}

// Creates the folder and the one above it. Folders above those belong to the system.
void MakeFolder(const std::wstring& folder) {
    CreateDirectoryW(std::wstring(FolderOf(folder)).c_str(), nullptr);
    CreateDirectoryW(folder.c_str(), nullptr);
}

bool WriteLine(HANDLE file, const std::string& line) {
    LARGE_INTEGER end{};
    if (!SetFilePointerEx(file, {}, &end, FILE_END)) return false;
    DWORD written = 0;
    const bool done =
        WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr) &&
        written == line.size();
    // Remove half a line, which a full disk leaves.
    if (!done && SetFilePointerEx(file, end, nullptr, FILE_BEGIN)) SetEndOfFile(file);
    return done;
}

std::wstring UserFolder() {
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    const HRESULT result =
        SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_DONT_VERIFY, nullptr, path.Put());
    return SUCCEEDED(result) ? std::wstring(path.Get()) + kFolderBelowAppData : std::wstring();
}

std::wstring_view ViewOf(const wchar_t* text) { return text ? text : L""; }

} // namespace

UsageRecord::UsageRecord(std::wstring folder, std::uint64_t sizeLimit)
    : folder_(std::move(folder)), current_(FullPath(folder_ + L"\\usage.txt")),
      older_(FullPath(folder_ + L"\\usage.old.txt")), sizeLimit_(sizeLimit) {}

// When the full file can't be renamed, the line is dropped, so that the limit is kept.
bool UsageRecord::MakeRoom(std::size_t bytes) const {
    WIN32_FILE_ATTRIBUTE_DATA now{};
    if (!GetFileAttributesExW(current_.c_str(), GetFileExInfoStandard, &now)) return true;
    const std::uint64_t size = std::uint64_t{now.nFileSizeHigh} << 32 | now.nFileSizeLow;
    if (size + bytes <= sizeLimit_) return true;
    return MoveFileExW(current_.c_str(), older_.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
}

bool UsageRecord::Append(const SYSTEMTIME& utc, std::wstring_view event,
                         std::wstring_view details) const {
    const std::string line = Line(utc, event, details);
    const WriterLock lock(folder_);
    if (!lock.IsHeld()) return false;
    MakeFolder(folder_);
    if (!MakeRoom(line.size())) return false;
    const ObLib::UniqueKernelHandle file(CreateFileW(current_.c_str(), GENERIC_WRITE,
                                                     FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                                     OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && WriteLine(file.Get(), line);
}

void RecordUsage(const wchar_t* event, const wchar_t* details) noexcept {
    // Out of memory: the event is lost, and the run goes on.
    ObLib::RanGuarded([=] {
        if (PolicyIsOn(kNoUsageRecordPolicy)) return;
        const std::wstring folder = UserFolder();
        if (folder.empty()) return;
        SYSTEMTIME now;
        GetSystemTime(&now);
        UsageRecord(folder).Append(now, ViewOf(event), ViewOf(details));
    });
}

void RecordProcessUsage(const wchar_t* event) noexcept {
    wchar_t details[32];
    _snwprintf(details, 32, L"process=%lu", GetCurrentProcessId());
    RecordUsage(event, details);
}

} // namespace obarchive

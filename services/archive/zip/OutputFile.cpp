#include "services/archive/zip/OutputFile.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "services/archive/Paths.h"
#include "services/archive/zip/RunState.h"

namespace obarchive {
namespace {

constexpr std::size_t kBufferSize = 256 * 1024;

std::wstring VolumeOf(const std::wstring& path) {
    std::wstring volume(path.size() + 2, L'\0');
    if (!GetVolumePathNameW(path.c_str(), volume.data(), static_cast<DWORD>(volume.size()))) {
        return {};
    }
    volume.resize(std::wcslen(volume.c_str()));
    return volume;
}

std::wstring WithBackslash(std::wstring folder) {
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/') folder += L'\\';
    return folder;
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// What the system reports while another program has the file open.
bool IsInUse(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_ACCESS_DENIED;
}

// The folder for the unfinished file, with its backslash.
std::wstring PartialFolder(const std::wstring& target, const std::wstring& temporaryFolder) {
    const std::wstring own(FolderOf(target));
    if (temporaryFolder.empty()) return own;
    const std::wstring other = WithBackslash(FullPath(temporaryFolder));
    if (!IsFolder(other)) return own;
    const std::wstring volume = VolumeOf(other);
    return !volume.empty() && EqualIgnoringCase(volume, VolumeOf(own)) ? other : own;
}

// Opened without sharing deletion, so that nobody removes the folder. Without the right to list the
// folder it can't be opened, and the run goes on.
ObLib::UniqueKernelHandle HoldFolder(const std::wstring& folder) {
    return ObLib::UniqueKernelHandle(
        CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::wstring PartialName(unsigned attempt) {
    wchar_t name[32];
    _snwprintf(name, 32, L"~ob%08x%04x.tmp", static_cast<unsigned>(GetTickCount64()) + attempt,
               GetCurrentProcessId() & 0xFFFF);
    return name;
}

} // namespace

bool OutputFile::FailWith(DWORD error) {
    if (failure_ == ZipResult::Ok) failure_ = TargetFailure(error);
    return false;
}

ZipResult OutputFile::Create(const std::wstring& target, const std::wstring& temporaryFolder) {
    constexpr unsigned kAttempts = 1000;
    if (IsThere(target)) return ZipResult::TargetExists;
    target_ = target;
    const std::wstring folder = PartialFolder(target, temporaryFolder);
    folder_ = HoldFolder(folder);
    buffer_.reserve(kBufferSize);
    DWORD error = ERROR_FILE_EXISTS;
    for (unsigned attempt = 0; attempt < kAttempts && error == ERROR_FILE_EXISTS; ++attempt) {
        // Known before it is there, so that no shortage of memory in between leaves it.
        partial_ = FullPath(folder + PartialName(attempt));
        file_ = ObLib::UniqueKernelHandle(CreateFileW(partial_.c_str(),
                                                      GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file_) return ZipResult::Ok;
        error = GetLastError();
        partial_.clear(); // the file there is another program's
    }
    FailWith(error);
    return failure_;
}

bool OutputFile::MoveTo(std::uint64_t position) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(position);
    if (SetFilePointerEx(file_.Get(), place, nullptr, FILE_BEGIN)) return true;
    return FailWith(GetLastError());
}

bool OutputFile::WriteThrough(const void* data, std::size_t length) {
    auto bytes = static_cast<const std::uint8_t*>(data);
    while (length != 0) {
        const auto piece = static_cast<DWORD>(std::min<std::size_t>(length, 1U << 30));
        DWORD written = 0;
        if (!WriteFile(file_.Get(), bytes, piece, &written, nullptr)) {
            return FailWith(GetLastError());
        }
        // A full disk may also show as a short write.
        if (written == 0) return FailWith(ERROR_DISK_FULL);
        bytes += written;
        length -= written;
    }
    return true;
}

bool OutputFile::Flush() {
    if (failure_ != ZipResult::Ok) return false;
    if (!buffer_.empty()) {
        if (!MoveTo(bufferStart_) || !WriteThrough(buffer_.data(), buffer_.size())) return false;
        flushedLength_ = std::max(flushedLength_, bufferStart_ + buffer_.size());
    }
    bufferStart_ += cursor_;
    cursor_ = 0;
    buffer_.clear();
    return true;
}

bool OutputFile::Write(const void* data, std::size_t length) {
    if (failure_ != ZipResult::Ok) return false;
    auto bytes = static_cast<const std::uint8_t*>(data);
    while (length != 0) {
        if (cursor_ == kBufferSize && !Flush()) return false;
        const std::size_t piece = std::min(length, kBufferSize - cursor_);
        if (cursor_ + piece > buffer_.size()) buffer_.resize(cursor_ + piece);
        std::memcpy(buffer_.data() + cursor_, bytes, piece);
        cursor_ += piece;
        bytes += piece;
        length -= piece;
    }
    return true;
}

bool OutputFile::Seek(std::uint64_t position) {
    const bool inBuffer = position >= bufferStart_ && position <= bufferStart_ + buffer_.size();
    if (!inBuffer && !Flush()) return false;
    if (!inBuffer) bufferStart_ = position;
    cursor_ = static_cast<std::size_t>(position - bufferStart_);
    return true;
}

std::uint64_t OutputFile::Length() const noexcept {
    return std::max(flushedLength_, bufferStart_ + buffer_.size());
}

bool OutputFile::ReadAt(std::uint64_t position, void* data, std::size_t length) {
    if (!Flush() || !MoveTo(position)) return false;
    DWORD read = 0;
    if (!ReadFile(file_.Get(), data, static_cast<DWORD>(length), &read, nullptr)) {
        return FailWith(GetLastError());
    }
    return read == length || FailWith(ERROR_HANDLE_EOF);
}

// Without the flag to replace, and on one volume, this is a single step that can't overwrite.
bool OutputFile::Rename() {
    constexpr DWORD kPause = 50;
    constexpr DWORD kPatience = 2000;
    for (DWORD waited = 0; !MoveFileExW(partial_.c_str(), target_.c_str(), 0); waited += kPause) {
        const DWORD error = GetLastError();
        if (waited >= kPatience || !IsInUse(error) || IsThere(target_)) return FailWith(error);
        wait_(kPause);
    }
    return true;
}

ZipResult OutputFile::Commit() {
    if (!file_ || !Flush())
        return failure_ == ZipResult::Ok ? ZipResult::TargetUnwritable : failure_;
    file_.Reset();
    if (!Rename()) return failure_;
    partial_.clear();
    return ZipResult::Ok;
}

void OutputFile::Discard() noexcept {
    file_.Reset();
    if (!partial_.empty()) DeleteFileW(partial_.c_str());
    partial_.clear();
    folder_.Reset();
}

} // namespace obarchive

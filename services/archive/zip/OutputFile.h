// A file that is whole or absent: written under a name of its own, renamed at the end.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// Waits for so many milliseconds.
using WaitCall = void(WINAPI*)(DWORD);

// Unless Commit has returned Ok, nothing of it is left when the object ends. One thread.
class OutputFile {
public:
    explicit OutputFile(WaitCall wait = &Sleep) : wait_(wait) {}
    ~OutputFile() { Discard(); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Makes the unfinished file beside `target`, or in `temporaryFolder` when that is on the same
    // volume, so that renaming stays one step. Refuses a target that exists.
    ZipResult Create(const std::wstring& target, const std::wstring& temporaryFolder);

    // Positions count from the beginning. False with LastFailure set.
    bool Write(const void* data, std::size_t length);
    bool Seek(std::uint64_t position);
    std::uint64_t Position() const noexcept { return bufferStart_ + cursor_; }
    std::uint64_t Length() const noexcept;
    bool Flush();

    // Reads back what was written; flushes first.
    bool ReadAt(std::uint64_t position, void* data, std::size_t length);

    // Closes the file and gives it the target's name. For up to two seconds it waits for a virus
    // scanner or an indexer that has opened the new file. A target that came into being meanwhile
    // is left as it is, and the run has failed.
    ZipResult Commit();

    ZipResult LastFailure() const noexcept { return failure_; }

private:
    bool WriteThrough(const void* data, std::size_t length);
    bool MoveTo(std::uint64_t position);
    bool Rename();
    bool FailWith(DWORD error);
    void Discard() noexcept;

    const WaitCall wait_;
    std::wstring target_;
    std::wstring partial_;
    ObLib::UniqueKernelHandle folder_; // keeps the folder from being renamed or removed meanwhile
    ObLib::UniqueKernelHandle file_;
    // Bytes that are still to be written at bufferStart_. Headers are written twice, the second
    // time when the data after them is known; for small entries both happen in here.
    std::vector<std::uint8_t> buffer_;
    std::size_t cursor_ = 0; // within buffer_
    std::uint64_t bufferStart_ = 0;
    std::uint64_t flushedLength_ = 0;
    ZipResult failure_ = ZipResult::Ok;
};

} // namespace obarchive

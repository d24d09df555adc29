// A file of the user, read once from its beginning to its end.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/compress/ByteBuffer.h"
#include "services/archive/zip/RunState.h"

namespace obarchive {

// Size and time of a source when the run began; the time again when its reading begins.
struct SourceFacts {
    std::uint64_t size = 0;
    FILETIME lastWrite{};
};

// False with the run's failure noted: not there, no right to look, or a folder.
bool ReadSourceFacts(const std::wstring& path, SourceFacts& facts, RunState& run);

// The system's time as seconds since 1970, kept within the range of a zip's own field (1980 to
// 2107, local time).
std::int64_t ZipTime(const FILETIME& time);

// Opened for reading only and shared with every other program. Used on the run's thread.
class SourceFile {
public:
    explicit SourceFile(RunState& run) : run_(run) {}

    // False with the run's failure noted; so is a size that isn't the one in `facts`. With `pinned`
    // the time has to be the same too; otherwise it is taken over.
    bool Open(const std::wstring& path, SourceFacts& facts, bool pinned);

    // The next bytes, as many as `most` unless the file ends before. Reports the progress after
    // each piece; with `counted`, the bytes count as read. The last ones are given only when the
    // file is still as it was when it was opened. False with the run's failure noted.
    bool Read(ByteBuffer& bytes, std::size_t most, bool counted);

    bool IsAtEnd() const noexcept { return total_ == facts_.size; }
    std::uint64_t Left() const noexcept { return facts_.size - total_; }
    void Close() noexcept { file_.Reset(); }
    // The open file, which whoever gets it closes.
    ObLib::UniqueKernelHandle Release() noexcept { return std::move(file_); }

private:
    bool ReadPiece(std::uint8_t* data, std::size_t size, DWORD& read);
    bool ConfirmEnd();

    RunState& run_;
    SourceFacts facts_;
    ObLib::UniqueKernelHandle file_;
    std::uint64_t total_ = 0;
};

} // namespace obarchive

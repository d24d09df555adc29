// The bytes of a request's source.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/TransformWork.h"

namespace transforms {

// A file as it is on the disk, mapped: it takes address space and no memory of the process. When
// the disk fails under it the process ends, which its manager reports.
class SourceView {
public:
    // Larger files are refused: the result is made in memory.
    static constexpr std::uint64_t kLargest = std::uint64_t{512} << 20;

    // Nothing, with the reason in `failure`, when the file can't be mapped. An empty file is fine.
    static std::optional<SourceView> Map(HANDLE file, obcontract::WorkFailure& failure) noexcept;

    std::span<const std::byte> Bytes() const noexcept { return {view_.Get(), size_}; }

private:
    ObLib::UniqueMappedView<const std::byte> view_; // empty for an empty file
    std::size_t size_ = 0;
};

} // namespace transforms

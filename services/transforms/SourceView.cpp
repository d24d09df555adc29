#include "services/transforms/SourceView.h"

namespace transforms {

using obcontract::WorkFailure;

std::optional<SourceView> SourceView::Map(HANDLE file, WorkFailure& failure) noexcept {
    LARGE_INTEGER size{};
    failure = WorkFailure::Unreadable;
    if (!GetFileSizeEx(file, &size)) return {};
    SourceView source;
    source.size_ = static_cast<std::size_t>(size.QuadPart);
    if (source.size_ == 0) return source; // the system maps no empty file
    failure = WorkFailure::TooLarge;
    if (source.size_ > kLargest) return {};
    failure = WorkFailure::Unreadable;
    const ObLib::UniqueKernelHandle mapping(
        CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping) return {};
    source.view_ = ObLib::UniqueMappedView<const std::byte>(static_cast<const std::byte*>(
        MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, source.size_)));
    if (!source.view_) return {};
    return source;
}

} // namespace transforms

#include "ObLibX/src/dialog/ImageSet.h"

#include <algorithm>
#include <iterator>

#include "ObLib/Src/ObFatal.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ImageSet.cpp";

constexpr std::int32_t kScales[] = {480, 384, 288, 240, 192, 144, 120}; // from scale 7 down to 1

} // namespace

std::int32_t ScaleOfDpi(std::int32_t dpi) {
    const auto* const found =
        std::ranges::find_if(kScales, [&](std::int32_t least) { return dpi >= least; });
    return static_cast<std::int32_t>(std::end(kScales) - found);
}

std::int32_t ImageIndex(std::int32_t row, std::int32_t dpi) {
    ObAssert(row >= 0 && row < kMostImages / kImageScales);
    return row * kImageScales + ScaleOfDpi(dpi);
}

ImageSet::ImageSet(const std::int32_t* list) {
    std::ranges::fill(ids, kImageListEnd);
    if (list == nullptr) return;
    std::int32_t count = 0;
    for (; count < kMostImages && list[count] != kImageListEnd; ++count) ids[count] = list[count];
    ObAssert(list[count] == kImageListEnd && count != 0 && count % kImageScales == 0);
    rows = static_cast<std::uint32_t>(count / kImageScales);
}

std::int32_t GetImageId(const ImageSet& set, std::int32_t row, std::int32_t dpi) {
    const std::int32_t index = ImageIndex(row, dpi);
    const bool isPastLast = static_cast<std::uint32_t>(row) >= set.rows;
    const std::int32_t id = set.ids[isPastLast ? ImageIndex(0, dpi) : index];
    return id == kImageListEnd ? 0 : id;
}

} // namespace ObLibX

#include "ObLibX/src/controls/ControlImages.h"

#include <array>
#include <cstddef>
#include <iterator>

#include "ObLibX/src/dialog/ImageSet.h"

namespace ObLibX {
namespace {

struct SetRow {
    ControlImage image;
    std::int32_t firstId; // of eight consecutive ones
};

constexpr SetRow kSets[] = {
    {ControlImage::CheckOn, 62024},
    {ControlImage::CheckOnDisabled, 62032},
    {ControlImage::CheckOffDisabled, 62040},
    {ControlImage::CheckOff, 62048},
    {ControlImage::CheckThird, 62232},
    {ControlImage::CheckThirdDisabled, 62240},
    {ControlImage::RadioOn, 62056},
    {ControlImage::RadioOnDisabled, 62064},
    {ControlImage::RadioOffDisabled, 62072},
    {ControlImage::RadioOff, 62080},
    {ControlImage::Settings, 62088},
    {ControlImage::DownArrow, 62096},
    {ControlImage::DownArrowDisabled, 62104},
    {ControlImage::LeftArrow, 62112},
    {ControlImage::LeftArrowDisabled, 62120},
    {ControlImage::RightArrow, 62128},
    {ControlImage::RightArrowDisabled, 62136},
    {ControlImage::UpArrow, 62144},
    {ControlImage::UpArrowDisabled, 62152},
    {ControlImage::Browser, 62224},
    {ControlImage::EyeHidden, 62248},
    {ControlImage::EyeVisible, 62256},
};

using List = std::array<std::int32_t, kImageScales + 1>;

constexpr List ListFrom(std::int32_t firstId) {
    List list{};
    for (std::int32_t at = 0; at < kImageScales; ++at) {
        list[static_cast<std::size_t>(at)] = firstId + at;
    }
    list.back() = kImageListEnd;
    return list;
}

// In the order of the names, so that a name is an index.
constexpr auto kLists = [] {
    std::array<List, std::size(kSets)> lists{};
    for (const SetRow& row : kSets) {
        lists[static_cast<std::size_t>(row.image)] = ListFrom(row.firstId);
    }
    return lists;
}();

} // namespace

const std::int32_t* ImageList(ControlImage image) {
    return kLists[static_cast<std::size_t>(image)].data();
}

} // namespace ObLibX

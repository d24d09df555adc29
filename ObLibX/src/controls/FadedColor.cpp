#include "ObLibX/src/controls/FadedColor.h"

#include <initializer_list>

namespace ObLibX {
namespace {

std::int32_t Channel(std::uint32_t color, int shift) {
    return static_cast<std::int32_t>(color >> shift & 0xFF);
}

} // namespace

std::uint32_t FadedColor(std::uint32_t from, std::uint32_t to, std::uint32_t step) {
    std::uint32_t color = 0;
    for (const int shift : {0, 8, 16}) {
        const std::int32_t start = Channel(from, shift);
        const std::int32_t way = Channel(to, shift) - start;
        const std::int32_t now =
            start + way * static_cast<std::int32_t>(step) / static_cast<std::int32_t>(kFadeSteps);
        color |= static_cast<std::uint32_t>(now) << shift;
    }
    return color;
}

} // namespace ObLibX

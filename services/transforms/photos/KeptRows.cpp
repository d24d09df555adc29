#include "services/transforms/photos/KeptRows.h"

#include <algorithm>
#include <utility>

namespace transforms {
namespace {

// How the result's pixels are found in the stored rows, by the EXIF orientation less 1: rows are
// columns, columns count from the right, rows count from below.
struct TurnRow {
    bool swaps, flipsX, flipsY;
};
constexpr TurnRow kTurns[] = {
    {false, false, false}, {false, true, false}, {false, true, true}, {false, false, true},
    {true, false, false},  {true, false, true},  {true, true, true},  {true, true, false},
};

} // namespace

KeptRows::KeptRows(RowReader& from, unsigned orientation, bool zeroAlphaIsUnset,
                   const PictureControl& control)
    : stored_(from.Form().size), channels_(from.Form().channels) {
    const TurnRow& turn = kTurns[orientation - 1];
    isSwapped_ = turn.swaps;
    flipsX_ = turn.flipsX;
    flipsY_ = turn.flipsY;
    form_ = from.Form();
    ReadAll(from, control);
    if (form_.hasAlpha && (isOpaque_ || (isAllClear_ && zeroAlphaIsUnset))) {
        form_.hasAlpha = false;
        --form_.channels;
    }
    if (isSwapped_) std::swap(form_.size.width, form_.size.height);
}

void KeptRows::ReadAll(RowReader& from, const PictureControl& control) {
    const std::size_t rowBytes = form_.RowBytes();
    control.ThrowIfTooMuch(static_cast<std::uint64_t>(rowBytes) * stored_.height);
    pixels_.resize(rowBytes * stored_.height);
    for (std::size_t y = 0; y < stored_.height; ++y) {
        control.ThrowIfCancelled();
        from.Read(&pixels_[y * rowBytes]);
        if (form_.hasAlpha) LookAtAlpha(&pixels_[y * rowBytes]);
    }
}

void KeptRows::LookAtAlpha(const std::uint8_t* row) noexcept {
    for (std::size_t x = 0; x < stored_.width; ++x) {
        const std::uint8_t alpha = row[(x + 1) * channels_ - 1];
        isOpaque_ = isOpaque_ && alpha == 255;
        isAllClear_ = isAllClear_ && alpha == 0;
    }
}

void KeptRows::Read(std::uint8_t* row) {
    const std::size_t outer = next_++;
    for (std::size_t inner = 0; inner < form_.size.width; ++inner, row += form_.channels) {
        std::size_t x = isSwapped_ ? outer : inner, y = isSwapped_ ? inner : outer;
        if (flipsX_) x = stored_.width - 1 - x;
        if (flipsY_) y = stored_.height - 1 - y;
        std::copy_n(&pixels_[(y * stored_.width + x) * channels_], form_.channels, row);
    }
}

} // namespace transforms

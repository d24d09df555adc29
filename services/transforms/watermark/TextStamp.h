// A text as a watermark, drawn by the system: in any script for which the machine has a font.
#pragma once

#include <string>

#include "services/transforms/raster/Stamp.h"
#include "services/transforms/watermark/Watermark.h"

namespace transforms {

enum class Letters {
    White, // with a dark edge: for pictures
    Black, // with a light edge: for pages, which are mostly white
};

// The edge makes letters readable on any ground. One line; a text that is
// too long for a picture gets smaller letters, and ends with three dots where those would be too
// small. Any thread.
class TextStamp final : public Stamp {
public:
    TextStamp(std::wstring text, WatermarkLook look, Letters letters)
        : text_(std::move(text)), look_(look), letters_(letters) {}
    // Throws PictureFailure with OutOfMemory when the system can't draw.
    PlacedStamp For(PictureSize shown) const override;
    bool HasRoomIn(PictureSize size) const noexcept override;

private:
    std::wstring text_;
    WatermarkLook look_;
    Letters letters_;
};

} // namespace transforms

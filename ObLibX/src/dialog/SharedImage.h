// Pictures that controls show again and again: loaded once for all of them, and made ready for
// drawing once. On the thread of the dialogs.
#pragma once

#include <windows.h>

#include <compare>
#include <cstdint>
#include <memory>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLibX {

// A picture of a module's resources, for as long as somebody has it.
class SharedImage {
public:
    // Which picture of which module.
    struct Key {
        HMODULE module;
        std::int32_t id;
        auto operator<=>(const Key&) const = default;
    };

    // For LoadSharedImage.
    SharedImage(const Key& key, ObLib::UniqueBitmap bitmap);
    ~SharedImage();
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    // As LoadImage has it: with straight alpha, where it has any. Valid as long as this; not to be
    // written to.
    [[nodiscard]] HBITMAP Bitmap() const { return bitmap_.Get(); }
    [[nodiscard]] SIZE Size() const { return size_; } // pixels
    // As DrawImageAt draws Bitmap.
    void Draw(HDC dc, int x, int y) const;

private:
    Key key_;
    ObLib::UniqueBitmap bitmap_;
    ObLib::UniqueBitmap premultiplied_; // empty: of fewer than 32 bits a pixel
    SIZE size_;
};

using SharedImagePtr = std::shared_ptr<const SharedImage>;

// The picture that LoadImage loads, the same object for all who ask while one of them has it. Null
// when there is none. `module` null: the program's. Throws std::bad_alloc.
SharedImagePtr LoadSharedImage(std::int32_t id, HMODULE module = nullptr);

// The picture whose Bitmap this is; null for any other bitmap.
const SharedImage* FindSharedImage(HBITMAP bitmap);

} // namespace ObLibX

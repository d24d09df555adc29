#include "ObLibX/src/dialog/SharedImage.h"

#include <algorithm>
#include <map>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/dialog/Images.h"

namespace ObLibX {
namespace {

// All that somebody has.
using Registry = std::map<SharedImage::Key, std::weak_ptr<const SharedImage>>;

Registry& AllImages() {
    static Registry images;
    return images;
}

} // namespace

SharedImage::SharedImage(const Key& key, ObLib::UniqueBitmap bitmap)
    : key_(key), bitmap_(std::move(bitmap)), premultiplied_(PremultipliedCopy(bitmap_.Get())),
      size_(ImageSize(bitmap_.Get())) {}

SharedImage::~SharedImage() { AllImages().erase(key_); }

void SharedImage::Draw(HDC dc, int x, int y) const {
    if (premultiplied_) {
        BlendImageAt(dc, premultiplied_.Get(), size_, x, y);
    } else {
        DrawImageAt(dc, bitmap_.Get(), x, y);
    }
}

SharedImagePtr LoadSharedImage(std::int32_t id, HMODULE module) {
    const SharedImage::Key key{module != nullptr ? module : ObLib::AppGlobals().programModule, id};
    const auto found = AllImages().find(key);
    if (found != AllImages().end()) return found->second.lock();
    ObLib::UniqueBitmap bitmap = LoadImage(id, key.module);
    if (!bitmap) return nullptr;
    auto image = std::make_shared<const SharedImage>(key, std::move(bitmap));
    AllImages().emplace(key, image);
    return image;
}

const SharedImage* FindSharedImage(HBITMAP bitmap) {
    for (const auto& [key, image] : AllImages()) {
        const SharedImagePtr shared = image.lock();
        if (shared && shared->Bitmap() == bitmap) return shared.get();
    }
    return nullptr;
}

} // namespace ObLibX

// The pages of a TIFF file.
#pragma once

#include <optional>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/topdf/PagePicture.h"

namespace transforms {

class TiffPages {
public:
    // `source` and `control` must outlive the object. Throws PictureFailure: Unsupported when one
    // of the pages is of a form that can't be decoded.
    TiffPages(PictureSource& source, const PictureControl& control);

    // The next page; nothing after the last one. Thumbnails and masks of other pages are left out.
    // The page is read before the next call. Throws PictureFailure.
    std::optional<PagePicture> Next();

private:
    bool IsPage() const noexcept;
    bool GoOn();
    PagePicture Read();
    void ReadPacked(PagePicture& picture);
    void ReadDecoded(PagePicture& picture);

    const PictureControl& control_;
    TiffFile file_;
    bool isBegun_ = false;
    bool hasPages_ = false;  // a directory that is a page of its own
    std::uint64_t read_ = 0; // bytes of all pages so far
};

} // namespace transforms

// The TIFF library on our files. The library reports by results; what its callbacks noticed is kept
// aside, as an exception must not pass through it: it has long jumps of its own.
#pragma once

#include <cstdint>
#include <exception>

#include <tiffio.h>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// Throws PictureFailure where a call of its own fails. One thread at a time.
class TiffFile {
public:
    TiffFile(PictureSource& source, const PictureControl& control);
    TiffFile(PictureTarget& target, bool isBigEndian);
    ~TiffFile();
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    TIFF* get() const noexcept { return tiff_; }
    // Writes what is still to be written. Without it the target isn't whole.
    void Close();
    // Ends a call that failed: what a callback noticed, or that the file is damaged.
    [[noreturn]] void ThrowFailure() const;
    void Check(bool good) const {
        if (!good) ThrowFailure();
    }

private:
    friend struct TiffCallbacks;

    void Open(const char* mode);

    PictureSource* source_ = nullptr;
    PictureTarget* target_ = nullptr;
    TIFF* tiff_ = nullptr;
    std::uint64_t offset_ = 0, size_ = 0;
    std::exception_ptr failure_;
};

// A tag of the page that was read last: the default of the format where the file lacks it, for
// TiffLong 0.
std::uint16_t TiffShort(TIFF* tiff, std::uint32_t tag) noexcept;
std::uint32_t TiffLong(TIFF* tiff, std::uint32_t tag) noexcept;

} // namespace transforms

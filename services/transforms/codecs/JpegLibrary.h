// The JPEG library with its errors as exceptions and its files as ours: the one place that knows
// how the library reports what went wrong. Each object belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// Throws PictureFailure out of the library's calls. Data that is missing or doesn't decode is an
// error here, although the library would go on with grey; what is merely odd, as bytes between
// markers, is not.
class JpegReader : public jpeg_decompress_struct {
public:
    JpegReader(PictureSource& source, const PictureControl& control);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    const PictureControl& control() const noexcept { return control_; }
    // How much of the file the library has taken.
    std::uint64_t Position() const noexcept { return offset_ - reading_.bytes_in_buffer; }
    // From here on the file may be of any length; what is before the picture is kept in memory.
    void EndHeader() noexcept { inHeader_ = false; }

private:
    friend struct JpegCallbacks;

    PictureSource& file_;
    const PictureControl& control_;
    jpeg_error_mgr errors_{};
    jpeg_source_mgr reading_{};
    jpeg_progress_mgr progress_{};
    std::uint64_t offset_ = 0;
    std::vector<std::uint8_t> buffer_;
    bool inHeader_ = true;
};

class JpegWriter : public jpeg_compress_struct {
public:
    explicit JpegWriter(PictureTarget& target);
    ~JpegWriter();
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

private:
    friend struct JpegCallbacks;

    PictureTarget& file_;
    jpeg_error_mgr errors_{};
    jpeg_destination_mgr writing_{};
    std::uint64_t offset_ = 0;
    std::vector<std::uint8_t> buffer_;
};

} // namespace transforms

// Rows of bytes as PDF stores pictures without loss: each is predicted from the pixels to its left
// and above, as in PNG, and deflated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "services/transforms/raster/PictureFile.h"

namespace transforms {

class FlateRows {
public:
    using Sink = std::function<void(std::span<const std::uint8_t>)>;

    // Rows of `rowBytes` whose pixels have `pixelBytes`; 0 for pixels whose values aren't steps of
    // brightness, as indices, or that share a byte: those aren't predicted. The sink gets the coded
    // bytes piece by piece, within Write and Finish. Throws PictureFailure, as the functions do.
    FlateRows(std::size_t rowBytes, std::size_t pixelBytes, Sink sink);
    ~FlateRows();
    FlateRows(const FlateRows&) = delete;
    FlateRows& operator=(const FlateRows&) = delete;

    void Write(const std::uint8_t* row);
    // After the last row.
    void Finish();

private:
    struct Deflater;

    const std::uint8_t* Predicted(const std::uint8_t* row);
    std::size_t Try(int kind, const std::uint8_t* row, std::uint8_t* to) const noexcept;

    std::size_t rowBytes_, pixelBytes_;
    Sink sink_;
    std::unique_ptr<Deflater> deflater_;
    PictureBytes above_;      // the row before, after a pixel of zeros
    PictureBytes current_;    // this row, in the same way
    PictureBytes candidates_; // a kind and a row each
};

} // namespace transforms

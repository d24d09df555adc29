// Shrinks one plane of samples row by row with a Lanczos filter of three lobes, widened by the
// scale so that it is an antialiasing filter too. Colours are averaged as they are coded: peers do
// the same unless they are asked not to, and a profile adds nothing to the coding. Memory is a
// few rows.
//
// 8-bit samples are weighted in whole numbers by SSE2, which every 64-bit processor has; deeper
// samples, and those that were multiplied by alpha, in floating point. Equal input gives equal
// output anywhere.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace transforms {

// The weights of one direction, for each output sample.
class ResampleAxis {
public:
    // `scale` is input samples per output sample, 1 or more; it may differ a little from inputs /
    // outputs, as in planes of a picture whose size isn't a multiple of the subsampling.
    ResampleAxis(std::uint32_t inputs, std::uint32_t outputs, double scale);

    // Each output is its input.
    bool isIdentity() const noexcept { return isIdentity_; }

    struct Taps {
        std::uint32_t first; // input sample
        std::uint32_t count; // never 0, and never past the inputs
    };

    std::uint32_t inputs() const noexcept { return inputs_; }
    std::uint32_t outputs() const noexcept { return static_cast<std::uint32_t>(taps_.size()); }
    // Weights of one output are at `number * stride()`, with zeros up to the stride, a multiple
    // of 8.
    std::size_t stride() const noexcept { return stride_; }
    const Taps& taps(std::size_t number) const noexcept { return taps_[number]; }
    const float* floats(std::size_t number) const noexcept { return &floats_[number * stride_]; }
    // In 1/16384; the weights of an output add up to exactly that.
    const std::int16_t* shorts(std::size_t number) const noexcept {
        return &shorts_[number * stride_];
    }

private:
    void Weigh(std::size_t number, double scale, double support);
    void Round(std::size_t number);

    std::uint32_t inputs_;
    bool isIdentity_;
    std::size_t stride_;
    std::vector<Taps> taps_;
    std::vector<float> floats_;
    std::vector<std::int16_t> shorts_;
};

// Rows are pushed in order; after each push all rows that became ready are pulled. One thread.
// Both axes must outlive the resampler.
class PlaneResamplerFloat {
public:
    PlaneResamplerFloat(const ResampleAxis& across, const ResampleAxis& down);
    void Push(const float* row);
    bool IsReady() const noexcept;
    void Pull(float* row);

private:
    const ResampleAxis& across_;
    const ResampleAxis& down_;
    std::vector<float> padded_, ring_;
    std::uint32_t pushed_ = 0, pulled_ = 0, rows_;
};

class PlaneResampler8 {
public:
    PlaneResampler8(const ResampleAxis& across, const ResampleAxis& down);
    // `row` has across.inputs() samples.
    void Push(const std::uint8_t* row);
    bool IsReady() const noexcept;
    // Writes across.outputs() samples.
    void Pull(std::uint8_t* row);

private:
    const std::int16_t* Row(std::uint32_t number) const noexcept;
    __m128i EightSamples(std::size_t x, std::uint32_t count,
                         const std::int16_t* weights) const noexcept;
    bool IsCopy() const noexcept { return across_.isIdentity() && down_.isIdentity(); }
    void PushCoarse(const std::uint8_t* row);
    void PullCoarse(std::uint8_t* row);

    const ResampleAxis& across_;
    const ResampleAxis& down_;
    std::size_t width_; // of a row in the ring, a multiple of 8
    std::vector<std::uint8_t> padded_;
    std::vector<const std::int16_t*> tapRows_; // of the row that is being pulled
    std::vector<std::int16_t> ring_;           // rows that were shrunk across, in 1/64
    std::uint32_t pushed_ = 0, pulled_ = 0, rows_ = 0;
    // Instead of all that where so many samples become one that their weights would round to
    // nothing.
    std::unique_ptr<PlaneResamplerFloat> coarse_;
    std::vector<float> floats_;
};

} // namespace transforms

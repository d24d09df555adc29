// The Lanczos weights, and the two directions in whole numbers and in floating point.
#include "services/transforms/raster/Resampler.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace transforms {
namespace {

const double Lobes = 3;
const int One = 16384; // of the whole-number weights
const std::size_t MostShortTaps = 512;
const int RowBits =
    6; // fraction of a row that was shrunk across: 255 and the overshoot fit into 16 bits

double Sinc(double x) noexcept {
    const double angle = x * 3.14159265358979323846;
    return std::fabs(x) < 1e-9 ? 1 : std::sin(angle) / angle;
}

double Lanczos(double x) noexcept { return std::fabs(x) < Lobes ? Sinc(x) * Sinc(x / Lobes) : 0; }

std::size_t RoundUp(std::size_t number, std::size_t unit) noexcept {
    return (number + unit - 1) / unit * unit;
}

std::uint32_t MostTaps(const ResampleAxis& axis) noexcept {
    std::uint32_t most = 1;
    for (std::size_t i = 0; i < axis.outputs(); ++i) most = std::max(most, axis.taps(i).count);
    return most;
}

// The sum of eight products of neighbouring samples and weights, in four parts.
__m128i Products(const std::uint8_t* samples, const std::int16_t* weights) noexcept {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
    const __m128i words = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
    return _mm_madd_epi16(words, _mm_loadu_si128(reinterpret_cast<const __m128i*>(weights)));
}

int Sum(__m128i parts) noexcept {
    parts = _mm_add_epi32(parts, _mm_shuffle_epi32(parts, _MM_SHUFFLE(1, 0, 3, 2)));
    parts = _mm_add_epi32(parts, _mm_shuffle_epi32(parts, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(parts);
}

void ShrinkAcross(const ResampleAxis& axis, const std::uint8_t* from, std::int16_t* to) noexcept {
    const int shift = 14 - RowBits;
    for (std::size_t x = 0; x < axis.outputs(); ++x) {
        const auto taps = axis.taps(x);
        const std::int16_t* weights = axis.shorts(x);
        const std::uint8_t* samples = from + taps.first;
        __m128i parts = Products(samples, weights);
        for (std::uint32_t i = 8; i < taps.count; i += 8)
            parts = _mm_add_epi32(parts, Products(samples + i, weights + i));
        to[x] = static_cast<std::int16_t>((Sum(parts) + (1 << (shift - 1))) >> shift);
    }
}

// Eight samples of two rows, weighted, as two vectors of four sums.
struct EightSums {
    __m128i low, high;

    void Add(const std::int16_t* first, const std::int16_t* second, __m128i weights) noexcept {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(second));
        low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(a, b), weights));
        high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(a, b), weights));
    }
};

__m128i Pair(std::int16_t first, std::int16_t second) noexcept {
    return _mm_set1_epi32(static_cast<std::uint16_t>(first) | static_cast<std::uint32_t>(second)
                                                                  << 16);
}

} // namespace

ResampleAxis::ResampleAxis(std::uint32_t inputs, std::uint32_t outputs, double scale)
    : inputs_(inputs), isIdentity_(inputs == outputs && scale == 1), taps_(outputs) {
    const double support = Lobes * std::max(scale, 1.0);
    stride_ = RoundUp(static_cast<std::size_t>(std::ceil(2 * support)) + 2, 8);
    floats_.resize(stride_ * outputs);
    shorts_.resize(stride_ * outputs);
    for (std::size_t i = 0; i < outputs; ++i) {
        Weigh(i, std::max(scale, 1.0), support);
        Round(i);
    }
}

void ResampleAxis::Weigh(std::size_t number, double scale, double support) {
    const double centre = (static_cast<double>(number) + 0.5) * scale;
    const double last = inputs_ - 1;
    const auto first =
        static_cast<std::uint32_t>(std::clamp(std::floor(centre - support), 0.0, last));
    const auto end =
        static_cast<std::uint32_t>(std::clamp(std::ceil(centre + support), first + 1.0, last + 1));
    float* weights = &floats_[number * stride_];
    double sum = 0;
    for (std::uint32_t i = first; i < end; ++i) {
        const double weight = Lanczos((i + 0.5 - centre) / scale);
        weights[i - first] = static_cast<float>(weight);
        sum += weight;
    }
    // A centre past the last sample: that sample alone.
    if (sum < 0.1) {
        std::fill(weights, weights + stride_, 0.0f);
        weights[end - 1 - first] = 1;
        sum = 1;
    }
    for (std::uint32_t i = 0; i < end - first; ++i)
        weights[i] = static_cast<float>(weights[i] / sum);
    taps_[number] = {first, end - first};
}

void ResampleAxis::Round(std::size_t number) {
    const float* weights = floats(number);
    std::int16_t* rounded = &shorts_[number * stride_];
    int left = One;
    std::size_t largest = 0;
    for (std::uint32_t i = 0; i < taps_[number].count; ++i) {
        // A single weight of 1 would be one too many for 16 bits twice over; it fits once.
        rounded[i] = static_cast<std::int16_t>(std::lround(weights[i] * One));
        left -= rounded[i];
        if (weights[i] > weights[largest]) largest = i;
    }
    rounded[largest] = static_cast<std::int16_t>(rounded[largest] + left);
}

PlaneResampler8::PlaneResampler8(const ResampleAxis& across, const ResampleAxis& down)
    : across_(across), down_(down), width_(RoundUp(across.outputs(), 8)) {
    if (std::max(across.stride(), down.stride()) > MostShortTaps) {
        coarse_ = std::make_unique<PlaneResamplerFloat>(across, down);
        floats_.resize(std::max(across.inputs(), across.outputs()));
        return;
    }
    padded_.resize(across.inputs() + across.stride());
    if (IsCopy()) return;
    rows_ = MostTaps(down) + 1;
    ring_.resize(width_ * rows_);
    tapRows_.resize(rows_);
}

void PlaneResampler8::PushCoarse(const std::uint8_t* row) {
    std::copy(row, row + across_.inputs(), floats_.begin());
    coarse_->Push(floats_.data());
}

void PlaneResampler8::PullCoarse(std::uint8_t* row) {
    coarse_->Pull(floats_.data());
    for (std::size_t x = 0; x < across_.outputs(); ++x)
        row[x] = static_cast<std::uint8_t>(std::clamp(floats_[x] + 0.5f, 0.0f, 255.0f));
}

void PlaneResampler8::Push(const std::uint8_t* row) {
    if (coarse_) return PushCoarse(row);
    // Zero weights read up to a stride past the row's end.
    std::memcpy(padded_.data(), row, across_.inputs());
    if (IsCopy()) {
        ++pushed_;
        return;
    }
    ShrinkAcross(across_, padded_.data(), &ring_[pushed_ % rows_ * width_]);
    ++pushed_;
}

bool PlaneResampler8::IsReady() const noexcept {
    if (coarse_) return coarse_->IsReady();
    if (pulled_ == down_.outputs()) return false;
    if (IsCopy()) return pushed_ > pulled_;
    const auto taps = down_.taps(pulled_);
    return pushed_ >= taps.first + taps.count;
}

const std::int16_t* PlaneResampler8::Row(std::uint32_t number) const noexcept {
    return &ring_[number % rows_ * width_];
}

void PlaneResampler8::Pull(std::uint8_t* row) {
    if (coarse_) return PullCoarse(row);
    if (IsCopy()) {
        std::memcpy(row, padded_.data(), across_.inputs());
        ++pulled_;
        return;
    }
    const auto taps = down_.taps(pulled_);
    for (std::uint32_t i = 0; i < taps.count; ++i) tapRows_[i] = Row(taps.first + i);
    // An odd number of rows gets one more, with a weight of 0.
    tapRows_[taps.count] = tapRows_[0];
    const std::int16_t* weights = down_.shorts(pulled_);
    ++pulled_;
    const std::size_t width = across_.outputs();
    std::size_t x = 0;
    for (; x + 8 <= width; x += 8)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(row + x), EightSamples(x, taps.count, weights));
    if (x == width) return;
    alignas(16) std::uint8_t last[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(last), EightSamples(x, taps.count, weights));
    std::memcpy(row + x, last, width - x);
}

__m128i PlaneResampler8::EightSamples(std::size_t x, std::uint32_t count,
                                      const std::int16_t* weights) const noexcept {
    const int shift = 14 + RowBits;
    EightSums sums{_mm_set1_epi32(1 << (shift - 1)), _mm_set1_epi32(1 << (shift - 1))};
    for (std::uint32_t i = 0; i < count; i += 2)
        sums.Add(tapRows_[i] + x, tapRows_[i + 1] + x, Pair(weights[i], weights[i + 1]));
    const __m128i words =
        _mm_packs_epi32(_mm_srai_epi32(sums.low, shift), _mm_srai_epi32(sums.high, shift));
    return _mm_packus_epi16(words, words);
}

PlaneResamplerFloat::PlaneResamplerFloat(const ResampleAxis& across, const ResampleAxis& down)
    : across_(across), down_(down), padded_(across.inputs() + across.stride()),
      rows_(MostTaps(down) + 1) {
    ring_.resize(static_cast<std::size_t>(across.outputs()) * rows_);
}

void PlaneResamplerFloat::Push(const float* row) {
    std::copy(row, row + across_.inputs(), padded_.begin());
    float* to = &ring_[static_cast<std::size_t>(pushed_ % rows_) * across_.outputs()];
    for (std::size_t x = 0; x < across_.outputs(); ++x) {
        const float* samples = &padded_[across_.taps(x).first];
        const float* weights = across_.floats(x);
        // Four sums, so that the compiler uses vectors without being allowed to reorder.
        float sums[4] = {};
        for (std::uint32_t i = 0; i < across_.taps(x).count; i += 4)
            for (int k = 0; k < 4; ++k) sums[k] += samples[i + k] * weights[i + k];
        to[x] = (sums[0] + sums[1]) + (sums[2] + sums[3]);
    }
    ++pushed_;
}

bool PlaneResamplerFloat::IsReady() const noexcept {
    if (pulled_ == down_.outputs()) return false;
    const auto taps = down_.taps(pulled_);
    return pushed_ >= taps.first + taps.count;
}

void PlaneResamplerFloat::Pull(float* row) {
    const auto taps = down_.taps(pulled_);
    const float* weights = down_.floats(pulled_);
    const std::size_t width = across_.outputs();
    ++pulled_;
    std::fill(row, row + width, 0.0f);
    for (std::uint32_t i = 0; i < taps.count; ++i) {
        const float* from = &ring_[(taps.first + i) % rows_ * width];
        for (std::size_t x = 0; x < width; ++x) row[x] += from[x] * weights[i];
    }
}

} // namespace transforms

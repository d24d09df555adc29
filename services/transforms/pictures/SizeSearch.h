// Finds the best quality and size at which pictures meet a number of bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Steps from the best to the smallest: first only the coding becomes coarser, up to quality 85,
// then the size falls by half a percent a step, and the quality slowly to 70. One ladder is for all
// pictures of a run.
class ShrinkLadder {
public:
    // `longestEdge` of the largest picture.
    explicit ShrinkLadder(std::uint32_t longestEdge);
    // The same size with finer coding, from the best on; empty if the step's coding is the best.
    static ShrinkLadder FinerThan(const ShrinkStep& step, std::uint32_t longestEdge);
    std::size_t size() const noexcept { return steps_.size(); }
    const ShrinkStep& operator[](std::size_t number) const noexcept { return steps_[number]; }
    // How many bytes a step leaves of 1, as a guess that only has to fall from step to step.
    double Guess(std::size_t number) const noexcept;

private:
    ShrinkLadder() = default;
    void AddCoarser(int from, int to, std::uint32_t edge);

    std::uint32_t longestEdge_ = 1;
    std::vector<ShrinkStep> steps_;
};

// Bytes of all pictures at a step, each coded from its unshrunk copy.
using BytesAtStep = std::function<std::uint64_t(const ShrinkStep&)>;

// A step with at most `budget` bytes that uses nearly all of them; nothing if not even the last
// step of the ladder is small enough. `whole` is the bytes of the unshrunk pictures, `longestEdge`
// that of the largest. Guesses are corrected by what a step really took; of the steps that fitted,
// the result was tried last.
std::optional<ShrinkStep> FindStep(std::uint32_t longestEdge, std::uint64_t whole,
                                   std::uint64_t budget, const BytesAtStep& bytesAt);

} // namespace transforms

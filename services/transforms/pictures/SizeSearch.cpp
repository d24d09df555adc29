// A bracket that guesses shrink quickly and halving shrinks surely.
#include "services/transforms/pictures/SizeSearch.h"

#include <algorithm>
#include <cmath>

namespace transforms {
namespace {

const int BestCoarseness = 1, FullSizeCoarseness = 30, LastCoarseness = 60;
const std::uint32_t SmallestEdge = 200; // below that a picture shows nothing
const double EdgeFactor = 0.995;
const int FineCoarseness = 12; // up to here a whole percent is too large a step
// How the bytes of photographs fall.
const double CoarsenessPower = -0.45, ScalePower = 1.8;
// Enough of the budget to end with; what more would bring nobody sees.
const double GoodUse = 0.92, AimedUse = 0.965, EnoughUse = 0.9;
const int MostGuesses = 5;

// Falling.
std::vector<std::uint32_t> EdgesBelow(std::uint32_t longest) {
    std::vector<std::uint32_t> edges;
    for (double edge = longest * EdgeFactor; edge >= SmallestEdge; edge *= EdgeFactor) {
        const auto whole = static_cast<std::uint32_t>(edge);
        if (edges.empty() || edges.back() != whole) edges.push_back(whole);
    }
    return edges;
}

class Bracket {
public:
    Bracket(const ShrinkLadder& ladder, std::uint64_t whole, std::uint64_t budget,
            const BytesAtStep& bytesAt)
        : ladder_(ladder), budget_(static_cast<double>(budget)), bytesAt_(bytesAt),
          correction_(static_cast<double>(whole)),
          fits_(static_cast<std::ptrdiff_t>(ladder.size())) {}

    std::optional<ShrinkStep> Find() {
        for (int turn = 0; fits_ - tooMuch_ > 1; ++turn) {
            Try(turn < MostGuesses ? Guessed() : (tooMuch_ + fits_) / 2);
            if (used_ >= GoodUse) break;
        }
        if (fits_ == static_cast<std::ptrdiff_t>(ladder_.size())) return std::nullopt;
        return ladder_[static_cast<std::size_t>(fits_)];
    }
    double Used() const noexcept { return used_; }

private:
    // The first step that fits if each step's estimate has the same error as the last one that was
    // tried.
    std::ptrdiff_t Guessed() const {
        std::ptrdiff_t step = tooMuch_ + 1;
        while (step < fits_ - 1 &&
               ladder_.Guess(static_cast<std::size_t>(step)) * correction_ > AimedUse * budget_)
            ++step;
        return step;
    }

    void Try(std::ptrdiff_t step) {
        const auto number = static_cast<std::size_t>(step);
        const auto bytes = static_cast<double>(bytesAt_(ladder_[number]));
        correction_ = bytes / ladder_.Guess(number);
        if (bytes > budget_) {
            tooMuch_ = step;
        } else {
            fits_ = step;
            used_ = budget_ > 0 ? bytes / budget_ : 1;
        }
    }

    const ShrinkLadder& ladder_;
    double budget_;
    const BytesAtStep& bytesAt_;
    double correction_, used_ = 0;
    std::ptrdiff_t tooMuch_ = -1, fits_;
};

} // namespace

ShrinkLadder::ShrinkLadder(std::uint32_t longestEdge) : longestEdge_(longestEdge) {
    AddCoarser(BestCoarseness, FullSizeCoarseness, 0);
    const auto edges = EdgesBelow(longestEdge);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const auto more =
            static_cast<int>((LastCoarseness - FullSizeCoarseness) * (i + 1) / edges.size());
        steps_.push_back(
            {.longestEdge = edges[i], .coarseness = FullSizeCoarseness + more, .compact = true});
    }
    // A small picture still gets coarser.
    if (edges.empty()) AddCoarser(FullSizeCoarseness, LastCoarseness, 0);
}

void ShrinkLadder::AddCoarser(int from, int to, std::uint32_t edge) {
    for (int coarseness = from; coarseness < to; ++coarseness)
        for (int sixteenths = 0; sixteenths < 16; sixteenths += coarseness < FineCoarseness ? 1 : 8)
            steps_.push_back({edge, coarseness, sixteenths, true});
}

double ShrinkLadder::Guess(std::size_t number) const noexcept {
    const ShrinkStep& step = steps_[number];
    const double scale =
        step.longestEdge ? static_cast<double>(step.longestEdge) / longestEdge_ : 1;
    return std::pow(step.coarseness + step.sixteenths / 16.0, CoarsenessPower) *
           std::pow(scale, ScalePower);
}

ShrinkLadder ShrinkLadder::FinerThan(const ShrinkStep& step, std::uint32_t longestEdge) {
    ShrinkLadder ladder;
    ladder.longestEdge_ = longestEdge;
    ladder.AddCoarser(BestCoarseness, step.coarseness, step.longestEdge);
    return ladder;
}

std::optional<ShrinkStep> FindStep(std::uint32_t longestEdge, std::uint64_t whole,
                                   std::uint64_t budget, const BytesAtStep& bytesAt) {
    const ShrinkLadder ladder(longestEdge);
    Bracket bracket(ladder, whole, budget, bytesAt);
    const auto found = bracket.Find();
    if (!found || bracket.Used() >= EnoughUse) return found;
    // Grain that disappears as soon as a picture shrinks at all leaves a gap between two steps.
    // What is left of the budget goes into the quality.
    const auto finer = ShrinkLadder::FinerThan(*found, longestEdge);
    const auto better = Bracket(finer, whole, budget, bytesAt).Find();
    return better ? better : found;
}

} // namespace transforms

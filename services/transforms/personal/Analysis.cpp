#include "services/transforms/personal/Analysis.h"

#include <iterator>
#include <numeric>
#include <utility>

namespace transforms::personal {

void FindingCounter::Note(FindingKind kind, std::uint32_t count) {
    counts_[static_cast<std::size_t>(kind)] += count;
}

void FindingCounter::Note(const FindingCounter& more) {
    for (std::size_t at = 0; at < counts_.size(); ++at) counts_[at] += more.counts_[at];
}

bool FindingCounter::IsEmpty() const { return List().empty(); }

std::vector<Finding> FindingCounter::List() const { return Select(false); }

std::vector<Finding> FindingCounter::Staying() const { return Select(true); }

std::vector<Finding> FindingCounter::Select(bool staying) const {
    std::vector<Finding> list;
    for (std::size_t at = 0; at < counts_.size(); ++at) {
        const auto kind = static_cast<FindingKind>(at);
        if (counts_[at] != 0 && Stays(kind) == staying) list.push_back({kind, counts_[at]});
    }
    return list;
}

// Adjacent views become one, so that a file of many small chunks needs few parts.
void PartList::Keep(Bytes part) {
    if (part.empty()) return;
    if (lastIsKept_ && parts_.back().data() + parts_.back().size() == part.data()) {
        parts_.back() = Bytes(parts_.back().data(), parts_.back().size() + part.size());
    } else {
        parts_.push_back(part);
    }
    lastIsKept_ = true;
}

void PartList::Add(OwnedBytes made) {
    if (made.empty()) return;
    parts_.push_back(made);
    made_.push_back(std::move(made));
    lastIsKept_ = false;
}

void PartList::Append(PartList more) {
    parts_.insert(parts_.end(), more.parts_.begin(), more.parts_.end());
    std::ranges::move(more.made_, std::back_inserter(made_));
    lastIsKept_ = false;
}

std::size_t PartList::Size() const {
    return std::accumulate(parts_.begin(), parts_.end(), std::size_t{0},
                           [](std::size_t sum, Bytes part) { return sum + part.size(); });
}

OwnedBytes PartList::Join() const {
    OwnedBytes joined;
    joined.reserve(Size());
    for (const Bytes part : parts_) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

bool PartList::IsEqualTo(Bytes file) const {
    if (Size() != file.size()) return false;
    for (const Bytes part : parts_) {
        if (!std::ranges::equal(part, file.first(part.size()))) return false;
        file = file.subspan(part.size());
    }
    return true;
}

CleanOutcome OutcomeOf(const Analysis& analysis) {
    const bool isFound =
        analysis.outcome == CleanOutcome::NothingFound && !analysis.found.IsEmpty();
    return isFound ? CleanOutcome::Cleaned : analysis.outcome;
}

CleanedFile ResultOf(Bytes file, const Analysis& analysis) {
    const CleanOutcome outcome = OutcomeOf(analysis);
    if (outcome == CleanOutcome::Cleaned) {
        return {outcome, analysis.parts.Join(), analysis.found.List(), analysis.found.Staying()};
    }
    if (outcome != CleanOutcome::NothingFound) return {outcome, {}, {}, {}};
    return {outcome, {file.begin(), file.end()}, {}, analysis.found.Staying()};
}

std::vector<Finding> FindingsOf(const Analysis& analysis) {
    if (analysis.outcome == CleanOutcome::Damaged) return {{FindingKind::Unreadable, 1}};
    if (analysis.outcome != CleanOutcome::NothingFound) return {};
    return analysis.found.List();
}

} // namespace transforms::personal

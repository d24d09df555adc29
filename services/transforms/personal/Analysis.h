// What reading one file gives: what was found, and the parts of which the clean file consists.
#pragma once

#include <array>

#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"

namespace transforms::personal {

// Counts what was found, by kind.
class FindingCounter {
public:
    void Note(FindingKind kind, std::uint32_t count = 1);
    void Note(const FindingCounter& more);
    bool IsEmpty() const;                 // whether nothing has to be removed
    std::vector<Finding> List() const;    // what has to be removed, in the order of the kinds
    std::vector<Finding> Staying() const; // what stays, in the order of the kinds

private:
    std::vector<Finding> Select(bool staying) const;

    std::array<std::uint32_t, kFindingKinds> counts_ = {};
};

// The parts of a new file in their order: views of the old file, and bytes that were made. The old
// file outlives the list.
class PartList {
public:
    PartList() = default;
    PartList(PartList&&) = default;
    PartList& operator=(PartList&&) = default;

    void Keep(Bytes part);     // of the old file
    void Add(OwnedBytes made); // owned by the list from here on
    void Append(PartList more);
    std::size_t Size() const; // bytes of all parts
    std::span<const Bytes> Parts() const { return parts_; }
    OwnedBytes Join() const;
    bool IsEqualTo(Bytes file) const; // what Join would return

private:
    std::vector<Bytes> parts_;
    std::vector<OwnedBytes> made_; // parts_ points into their memory, which a move doesn't move
    bool lastIsKept_ = false;
};

// The result of one format's reader.
struct Analysis {
    CleanOutcome outcome = CleanOutcome::NothingFound; // Cleaned is decided by what was found
    FindingCounter found;
    PartList parts; // of the clean file; not used when nothing was found
};

// For a reader that gives up.
inline Analysis Failed(CleanOutcome outcome) {
    Analysis failed;
    failed.outcome = outcome;
    return failed;
}

// Whether the file was read, and then whether anything has to be removed.
CleanOutcome OutcomeOf(const Analysis& analysis);

// What RemovePersonalData and FindPersonalData return for a file that was read.
CleanedFile ResultOf(Bytes file, const Analysis& analysis);
std::vector<Finding> FindingsOf(const Analysis& analysis);

} // namespace transforms::personal

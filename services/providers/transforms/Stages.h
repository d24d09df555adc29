// The transforms, their stages and their order: one table.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "services/providers/transforms/StageCall.h"

namespace providers {

struct TransformRow {
    obcontract::TransformId id;
    // What a transform does with one file, in the per-file stage or, for a file that it hasn't
    // seen, after the list, where `path` becomes that of the result; what it does with all files
    // after the list, where `paths` become the results; and what it does at the end. Null: nothing.
    // The rows are in the order in which they work on one file, and on all files.
    bool (*perFile)(StageCall& call, std::wstring& path, const std::wstring& folder);
    bool (*afterList)(StageCall& call, std::vector<std::wstring>& paths);
    bool (*final)(StageCall& call, const std::vector<std::wstring>& paths);
    // Whether the settings are such that the row counts; null: always. A transform may have several
    // rows, of which one counts.
    bool (*isUsed)(const RunPlan& plan) = nullptr;

    bool IsBuilt() const { return perFile || afterList || final; }
};

// All ids that the callers know; one that isn't built isn't supported.
std::span<const TransformRow> TransformRows() noexcept;

// How many of the selected transforms have work in each stage, in the order of the callers.
struct StageCounts {
    std::int32_t beforeList = 0; // no transform of this module works there
    std::int32_t afterList = 0;
    std::int32_t perFile = 0;
    std::int32_t final = 0;
};
// Without a plan, for which there was no memory, every stage counts in which a transform may work:
// a stage that isn't entered would let the files out unchanged.
StageCounts CountStages(const ProviderSet& selected, const RunPlan* plan) noexcept;

// The per-file stage for one file. `path` becomes the path of the result. False, after a sentence
// for the user unless the call was to end, when nothing is selected for the stage, without a file
// or a folder, and when a transform failed.
bool RunFileStage(StageCall& call, std::wstring& path, const std::wstring& folder);

// The stage after the list: the per-file transforms work on what they haven't seen, then the
// transforms of lists on all files, then personal data is removed from what is new. False when none
// of them is selected and, after a sentence unless the call was to end, when one failed; the
// results are then those of the stage before.
bool RunListStage(StageCall& call, const std::vector<std::wstring>& paths);

// The final stage, on the dialog's thread. False when no selected transform works in it and when
// one of them failed or the user stopped the run.
bool RunFinalStage(StageCall& call, const std::vector<std::wstring>& paths);

} // namespace providers

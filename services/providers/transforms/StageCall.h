// What a stage works with while one call of the manager lasts.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/files/WorkingCopies.h"
#include "services/providers/settings/ResizeSettings.h"
#include "services/providers/transforms/ProviderSet.h"
#include "services/providers/transforms/RunPasswords.h"
#include "services/providers/transforms/RunRecord.h"
#include "services/providers/worker/CallWait.h"
#include "services/providers/worker/WorkProcess.h"

namespace providers {

// The settings that decide in which stages a transform works. They stay the same for a run, so that
// no file is left out between two stages.
struct RunPlan {
    ResizeSettings resize;
};

// What lasts from the first call of a run to the end of its session. One call at a time uses it,
// but for `unfinished`, which has its own lock.
struct TransformRun {
    explicit TransformRun(WorkSettings settings) : process(std::move(settings)) {}
    // A stage that outlives its session deletes here what it began.
    ~TransformRun() {
        process.Stop();
        unfinished.DeleteAll();
    }
    TransformRun(const TransformRun&) = delete;
    TransformRun& operator=(const TransformRun&) = delete;

    // Read from the settings at the first call that has the memory for it. By any thread.
    const RunPlan& Plan(const TransformSettings& settings) {
        const std::lock_guard guard(planning_);
        if (!plan_) plan_ = RunPlan{ResizeSettings::Load(settings)};
        return *plan_;
    }

    UnfinishedFiles unfinished;
    RunRecord record;
    RunPasswords passwords;
    WorkProcess process;

private:
    std::mutex planning_;
    std::optional<RunPlan> plan_;
};

struct StageCall {
    TransformRun& run;
    const TransformSettings& settings;
    const ProviderSet& selected;
    const RunPlan& plan;
    bool isZipped; // the files go into a zip afterwards
    CallWait& wait;
};

// The longest path that a result can have: the buffers of GetTargetFile take its NUL besides.
inline constexpr std::size_t kLongestResult = 513;

// A failed step: shows the sentence with the file's name, unless the call was to end, and returns
// false.
bool Refuse(StageCall& call, UINT text, const std::wstring& path);

// A question about the file with the name in it, Yes or No. False, without a question, when the
// call was to end.
bool Ask(StageCall& call, UINT text, const std::wstring& path);

// The working copy at the path; `folder` as for WorkingCopy::Open. Nothing, after a sentence, when
// it isn't one or can't be read.
std::optional<WorkingCopy> OpenCopy(StageCall& call, const std::wstring& path,
                                    const std::wstring& folder);

// Puts what the work process wrote in the place of the copy. False, with the copy unchanged, when
// that isn't on the disk as it was reported or the system refuses.
bool TakePlace(StageCall& call, NewFile& made, WorkingCopy& copy, const WorkReport& report);

} // namespace providers

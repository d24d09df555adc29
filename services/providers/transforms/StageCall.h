// What a stage works with while one call of the manager lasts.
#pragma once

#include <string>

#include "contracts/ProviderManager.h"
#include "services/providers/files/WorkingCopies.h"
#include "services/providers/settings/TransformSettings.h"
#include "services/providers/transforms/ProviderSet.h"
#include "services/providers/transforms/RunRecord.h"
#include "services/providers/worker/CallWait.h"
#include "services/providers/worker/WorkProcess.h"

namespace providers {

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

    UnfinishedFiles unfinished;
    RunRecord record;
    WorkProcess process;
};

struct StageCall {
    TransformRun& run;
    const TransformSettings& settings;
    const ProviderSet& selected;
    CallWait& wait;
};

// A failed step: shows the sentence with the file's name, unless the call was to end, and returns
// false.
bool Refuse(StageCall& call, UINT text, const std::wstring& path);

} // namespace providers

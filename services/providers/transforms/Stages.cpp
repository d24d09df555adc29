#include "services/providers/transforms/Stages.h"

#include <algorithm>
#include <utility>

#include "services/providers/transforms/CombinePdfs.h"
#include "services/providers/transforms/ConvertPdf.h"
#include "services/providers/transforms/ConvertPhotos.h"
#include "services/providers/transforms/FitMail.h"
#include "services/providers/transforms/PersonalData.h"
#include "services/providers/transforms/Resize.h"
#include "services/providers/transforms/Watermark.h"
#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

using enum obcontract::TransformId;

bool LooksAtEachPicture(const RunPlan& plan) { return !plan.resize.FitsMail(); }
bool FitsPictures(const RunPlan& plan) { return plan.resize.FitsMail(); }

// A transform whose result has the name of the file.
template <bool (*Work)(StageCall&, const std::wstring&, const std::wstring&)>
bool InPlace(StageCall& call, std::wstring& path, const std::wstring& folder) {
    return Work(call, path, folder);
}

constexpr TransformRow kRows[] = {
    {ConvertPdf, &ConvertToPdf, nullptr, nullptr},
    {ConvertPhotos, &ConvertPhoto, nullptr, nullptr},
    {ResizeImages, &InPlace<&ResizePicture>, nullptr, nullptr, &LooksAtEachPicture},
    {Watermark, &InPlace<&AddWatermark>, nullptr, nullptr},
    {RemoveInfo, &InPlace<&RemovePersonalData>, nullptr, &CheckPersonalData},
    {CombinePdfs, nullptr, &providers::CombinePdfs, nullptr},
    {ResizeImages, nullptr, &FitMail, nullptr, &FitsPictures},
    {SignPdfs, nullptr, nullptr, nullptr},
    {ConvertFromPdf, nullptr, nullptr, nullptr},
};

bool Counts(const TransformRow& row, const ProviderSet& selected, const RunPlan* plan) {
    return selected.Contains(row.id) && (!row.isUsed || !plan || row.isUsed(*plan));
}

bool Counts(const TransformRow& row, const StageCall& call) {
    return Counts(row, call.selected, &call.plan);
}

StageCounts CountStages(const StageCall& call) { return CountStages(call.selected, &call.plan); }

// Before the work: a result that can't be handed over would be missing from the mail.
bool CanBeHandedOver(StageCall& call, const std::wstring& path) {
    return path.size() <= kLongestResult || Refuse(call, OB_TEXT_PATH_TOO_LONG, path);
}

bool CanBeHandedOver(StageCall& call, const std::vector<std::wstring>& paths) {
    return std::ranges::all_of(
        paths, [&](const std::wstring& path) { return CanBeHandedOver(call, path); });
}

// Runs the selected transforms on one file. `path` becomes that of the result, also for a file that
// an earlier call has seen.
bool Transform(StageCall& call, std::wstring& path, const std::wstring& folder) {
    auto& visited = call.run.record.visited;
    if (const auto earlier = visited.find(path); earlier != visited.end()) {
        path = earlier->second;
        return true;
    }
    const std::wstring given = path;
    for (const TransformRow& row : kRows) {
        if (!row.perFile || !Counts(row, call)) continue;
        if (!row.perFile(call, path, folder)) return false;
    }
    call.run.record.done.insert(path);
    visited[given] = path;
    return true;
}

// Removes personal data from what the list stage made, which the per-file stage hasn't seen.
bool CleanWhatIsNew(StageCall& call) {
    if (!call.selected.Contains(RemoveInfo)) return true;
    return std::ranges::all_of(call.run.record.made, [&](const std::wstring& path) {
        return RemovePersonalData(call, path, {});
    });
}

} // namespace

std::span<const TransformRow> TransformRows() noexcept { return kRows; }

StageCounts CountStages(const ProviderSet& selected, const RunPlan* plan) noexcept {
    StageCounts counts;
    for (const TransformRow& row : kRows) {
        if (!Counts(row, selected, plan)) continue;
        counts.afterList += row.afterList != nullptr;
        counts.perFile += row.perFile != nullptr;
        counts.final += row.final != nullptr;
    }
    return counts;
}

bool RunFileStage(StageCall& call, std::wstring& path, const std::wstring& folder) {
    if (path.empty() || CountStages(call).perFile == 0) return false;
    // Without a temporary folder the files are the user's own.
    if (folder.empty()) return Refuse(call, OB_TEXT_NOT_A_COPY, path);
    std::wstring result = path;
    if (!CanBeHandedOver(call, path) || !Transform(call, result, folder)) return false;
    path = std::move(result);
    return true;
}

bool RunListStage(StageCall& call, const std::vector<std::wstring>& paths) {
    const StageCounts counts = CountStages(call);
    if (counts.perFile + counts.afterList == 0 || !CanBeHandedOver(call, paths)) return false;
    std::vector<std::wstring> results = paths;
    for (std::wstring& path : results) {
        if (!call.run.record.done.contains(path) && !Transform(call, path, {})) return false;
    }
    for (const TransformRow& row : kRows) {
        if (!row.afterList || !Counts(row, call)) continue;
        if (!row.afterList(call, results)) return false;
    }
    if (!CleanWhatIsNew(call)) return false;
    call.run.record.results = std::move(results);
    return true;
}

bool RunFinalStage(StageCall& call, const std::vector<std::wstring>& paths) {
    if (CountStages(call).final == 0 || !CanBeHandedOver(call, paths)) return false;
    for (const TransformRow& row : kRows) {
        if (!row.final || !Counts(row, call)) continue;
        if (!row.final(call, paths)) return false;
    }
    call.run.record.results = paths;
    return true;
}

} // namespace providers

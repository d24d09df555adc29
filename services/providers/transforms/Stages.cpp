#include "services/providers/transforms/Stages.h"

#include <algorithm>

#include "services/providers/transforms/PersonalData.h"
#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

using enum obcontract::TransformId;

constexpr TransformRow kRows[] = {
    {ConvertPdf, nullptr, nullptr},
    {ConvertPhotos, nullptr, nullptr},
    {ResizeImages, nullptr, nullptr},
    {Watermark, nullptr, nullptr},
    {RemoveInfo, &RemovePersonalData, &CheckPersonalData},
    {CombinePdfs, nullptr, nullptr},
    {SignPdfs, nullptr, nullptr},
    {ConvertFromPdf, nullptr, nullptr},
};

// The longest path that a result can have: the buffers of GetTargetFile take its NUL besides.
constexpr std::size_t kLongestResult = 513;

// Before the work: a result that can't be handed over would be missing from the mail.
bool CanBeHandedOver(StageCall& call, const std::wstring& path) {
    return path.size() <= kLongestResult || Refuse(call, OB_TEXT_PATH_TOO_LONG, path);
}

bool CanBeHandedOver(StageCall& call, const std::vector<std::wstring>& paths) {
    return std::ranges::all_of(
        paths, [&](const std::wstring& path) { return CanBeHandedOver(call, path); });
}

// Runs the selected transforms on one file.
bool Transform(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    for (const TransformRow& row : kRows) {
        if (!row.perFile || !call.selected.Contains(row.id)) continue;
        if (!row.perFile(call, path, folder)) return false;
    }
    return true;
}

} // namespace

std::span<const TransformRow> TransformRows() noexcept { return kRows; }

StageCounts CountStages(const ProviderSet& selected) noexcept {
    StageCounts counts;
    for (const TransformRow& row : kRows) {
        if (!selected.Contains(row.id)) continue;
        counts.perFile += row.perFile != nullptr;
        counts.final += row.final != nullptr;
    }
    return counts;
}

bool RunFileStage(StageCall& call, std::wstring& path, const std::wstring& folder) {
    if (path.empty() || CountStages(call.selected).perFile == 0) return false;
    // Without a temporary folder the files are the user's own.
    if (folder.empty()) return Refuse(call, OB_TEXT_NOT_A_COPY, path);
    auto& visited = call.run.record.visited;
    if (const auto earlier = visited.find(path); earlier != visited.end()) {
        path = earlier->second;
        return true;
    }
    if (!CanBeHandedOver(call, path) || !Transform(call, path, folder)) return false;
    visited[path] = path;
    return true;
}

bool RunListStage(StageCall& call, const std::vector<std::wstring>& paths) {
    if (CountStages(call.selected).perFile == 0 || !CanBeHandedOver(call, paths)) return false;
    for (const std::wstring& path : paths) {
        if (call.run.record.cleaned.contains(path)) continue;
        if (!Transform(call, path, {})) return false;
    }
    call.run.record.results = paths;
    return true;
}

bool RunFinalStage(StageCall& call, const std::vector<std::wstring>& paths) {
    if (CountStages(call.selected).final == 0 || !CanBeHandedOver(call, paths)) return false;
    for (const TransformRow& row : kRows) {
        if (!row.final || !call.selected.Contains(row.id)) continue;
        if (!row.final(call, paths)) return false;
    }
    call.run.record.results = paths;
    return true;
}

} // namespace providers

#include "OBCore/transforms/TransformStages.h"

#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <utility>

#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"

namespace obcore {
namespace {

constexpr std::size_t kTargetCapacity = 514; // wide characters of one result, with its NUL
using TargetBuffer = std::array<wchar_t, kTargetCapacity>;

std::vector<const wchar_t*> PointersTo(const PathList& files) {
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& file : files) pointers.push_back(file.c_str());
    return pointers;
}

// Reads the results of a stage that succeeded into `capacity` buffers. The count that GetTargetFile
// gives is the number of results, at most one a buffer. Replaces the whole list of the run.
bool TakeResults(TransformRun& run, std::size_t capacity) {
    std::vector<TargetBuffer> buffers(capacity);
    std::vector<wchar_t*> pointers;
    for (TargetBuffer& buffer : buffers) pointers.push_back(buffer.data());
    std::uint32_t count = 0;
    const bool open = run.WhileOpen([&] {
        ProviderManager().GetTargetFile(run.Manager, pointers.data(), &count, kTargetCapacity);
    });
    if (!open) return false;
    PathList results;
    for (std::size_t index = 0; index < std::min<std::size_t>(count, capacity); ++index) {
        results.push_back(TextIn(buffers[index]));
    }
    return run.FinishStep(std::move(results));
}

bool SetCurrentTarget(TransformRun& run, const std::wstring& path) {
    return run.WhileOpen([&] { ProviderManager().SetProviderTarget(run.Manager, path.c_str()); });
}

bool TransformCurrentTarget(TransformRun& run) {
    bool done = false;
    const bool open = run.WhileOpen([&] {
        done = ProviderManager().ExecuteTransforms(run.Manager, nullptr, run.Dialog,
                                                   run.Folder.c_str(), 1, run.Mode(), nullptr,
                                                   nullptr) != 0;
    });
    return open && done;
}

// The text is copied at once, inside the call: it belongs to the manager. An empty text drops the
// file; a null is no text, so the stage has failed.
bool GetCurrentTarget(TransformRun& run, std::wstring& path) {
    bool given = false;
    const bool open = run.WhileOpen([&] {
        const wchar_t* const target = ProviderManager().GetProviderTarget(run.Manager);
        given = target != nullptr;
        if (given) path = target;
    });
    return open && given;
}

// The bar of the per-file stage: its position is the number of files that are done, a dropped one
// included. With a single file the bar stays a marquee.
class FileProgress {
public:
    FileProgress(const TransformDisplay& display, std::size_t files)
        : display_(display), measured_(files > 1) {
        if (measured_) display_.LeaveMarquee(files);
    }
    void Advance() {
        ++done_;
        if (measured_) display_.ShowDone(done_);
    }

private:
    const TransformDisplay& display_;
    const bool measured_;
    std::size_t done_ = 0;
};

// Transforms the file at `path` and replaces `path` by the result's, which is empty when the file
// is dropped. False when the manager reports a failure or the dialog has ended: the stage stops
// then.
bool TransformFile(TransformRun& run, const TransformDisplay& display, FileProgress& progress,
                   std::wstring& path) {
    if (!SetCurrentTarget(run, path)) return false;
    display.ShowFile(PathFindFileNameW(path.c_str()));
    if (!TransformCurrentTarget(run)) return false;
    progress.Advance();
    return GetCurrentTarget(run, path);
}

} // namespace

bool GetTransformSummary(TransformRun& run, TransformSummary& summary) {
    return run.WhileOpen([&] {
        ProviderManager().GetSelectedTransformSummary(
            run.Manager, &summary.beforeList, &summary.afterList, &summary.perFile, &summary.final);
    });
}

bool RunListStage(TransformRun& run) {
    TransformSummary summary;
    if (!GetTransformSummary(run, summary)) return false;
    const PathList files = run.Files();
    if ((summary.beforeList < 1 && summary.afterList < 1) || files.empty()) return true;
    const auto paths = PointersTo(files);
    auto count = static_cast<std::uint32_t>(files.size());
    bool done = false;
    const bool open = run.WhileOpen([&] {
        done = ProviderManager().ExecutePostTransforms(run.Manager, run.Dialog, paths.data(),
                                                       &count, run.Mode(), nullptr, nullptr) != 0;
    });
    return open && done && TakeResults(run, count);
}

bool RunPerFileStage(TransformRun& run, const TransformDisplay& display) {
    PathList files = run.Files();
    FileProgress progress(display, files.size());
    std::size_t index = 0; // in the list of the run; the next file takes the place of a dropped one
    for (std::wstring& path : files) {
        if (!TransformFile(run, display, progress, path)) return false;
        if (!run.FinishFile(index, path)) return false;
        if (!path.empty()) ++index;
    }
    return true;
}

bool RunFinalStage(TransformRun& run) {
    TransformSummary summary;
    if (!GetTransformSummary(run, summary)) return false;
    const PathList files = run.Files();
    if (summary.final < 1 || files.empty()) return true;
    const auto paths = PointersTo(files);
    bool done = false;
    const bool open = run.WhileOpen([&] {
        done = ProviderManager().ExecuteFinalTransforms(run.Manager, run.Dialog, paths.data(),
                                                        static_cast<std::uint32_t>(files.size()),
                                                        run.Mode(), nullptr, nullptr) != 0;
    });
    return open && done && TakeResults(run, files.size());
}

} // namespace obcore

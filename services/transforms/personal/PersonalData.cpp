#include "services/transforms/personal/PersonalData.h"

#include <utility>

#include "services/transforms/personal/Analysis.h"
#include "services/transforms/personal/Gif.h"
#include "services/transforms/personal/Jpeg.h"
#include "services/transforms/personal/Png.h"
#include "services/transforms/personal/Tiff.h"
#include "services/transforms/personal/WebP.h"

namespace transforms {
namespace {

using namespace personal;

struct Format {
    bool (*isFormat)(Bytes file);
    Analysis (*analyze)(Bytes file);
};

constexpr Format kFormats[] = {
    {IsJpeg, AnalyzeJpeg}, {IsPng, AnalyzePng},   {IsGif, AnalyzeGif},
    {IsWebP, AnalyzeWebP}, {IsTiff, AnalyzeTiff},
};

Analysis Analyze(Bytes file) {
    for (const Format& format : kFormats) {
        if (format.isFormat(file)) return format.analyze(file);
    }
    return Failed(CleanOutcome::NotSupported);
}

bool IsRead(const Analysis& analysis) { return analysis.outcome == CleanOutcome::NothingFound; }

} // namespace

CleanedFile RemovePersonalData(std::span<const std::byte> file) {
    const Analysis analysis = Analyze(file);
    if (!IsRead(analysis)) return {analysis.outcome, {}, {}};
    if (analysis.found.IsEmpty())
        return {CleanOutcome::NothingFound, {file.begin(), file.end()}, {}};
    return {CleanOutcome::Cleaned, analysis.parts.Join(), analysis.found.List()};
}

std::vector<Finding> FindPersonalData(std::span<const std::byte> file) {
    const Analysis analysis = Analyze(file);
    if (analysis.outcome == CleanOutcome::Damaged) return {{FindingKind::Unreadable, 1}};
    return IsRead(analysis) ? analysis.found.List() : std::vector<Finding>();
}

} // namespace transforms

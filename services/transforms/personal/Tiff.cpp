#include "services/transforms/personal/Tiff.h"

#include <utility>

#include "services/transforms/personal/TiffWriter.h"

namespace transforms::personal {
namespace {

// Counts the runs of bytes to which nothing refers; bytes of 0 between parts are usual.
void NoteGaps(Bytes file, const TiffContent& content, FindingCounter& found) {
    std::vector<Extent> all = content.other;
    all.insert(all.end(), content.kept.begin(), content.kept.end());
    const ExtentMap covered(std::move(all));
    std::uint64_t end = 0;
    for (const ExtentMap::Part& part : covered.Parts()) {
        const auto size = static_cast<std::size_t>(part.old.begin - end);
        if (!AreZero(file.subspan(static_cast<std::size_t>(end), size))) {
            found.Note(FindingKind::StrayBytes);
        }
        end = part.old.End();
    }
    if (!AreZero(file.subspan(static_cast<std::size_t>(end)))) {
        found.Note(FindingKind::TrailingData);
    }
}

} // namespace

bool IsTiff(Bytes file) { return TiffReader::Open(file).has_value(); }

Analysis AnalyzeTiff(Bytes file) {
    const auto reader = TiffReader::Open(file);
    TiffContent content = ReadTiffContent(*reader);
    if (content.outcome != CleanOutcome::NothingFound) return Failed(content.outcome);
    ExtentMap map(content.kept);
    const auto isShared = [&](const Extent& extent) { return map.Overlaps(extent); };
    if (std::ranges::any_of(content.other, isShared)) return Failed(CleanOutcome::Damaged);
    Analysis analysis;
    analysis.found = content.found;
    NoteGaps(file, content, analysis.found);
    if (analysis.found.IsEmpty()) return analysis;
    auto parts = WriteTiff(*reader, content, map);
    if (!parts) return Failed(CleanOutcome::NotSupported);
    analysis.parts = std::move(*parts);
    return analysis;
}

} // namespace transforms::personal

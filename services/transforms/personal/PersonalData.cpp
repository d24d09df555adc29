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

} // namespace

Analysis AnalyzePicture(std::span<const std::byte> file) {
    for (const Format& format : kFormats) {
        if (format.isFormat(file)) return format.analyze(file);
    }
    return Failed(CleanOutcome::NotSupported);
}

CleanedFile RemovePersonalData(std::span<const std::byte> file) {
    return ResultOf(file, AnalyzePicture(file));
}

std::vector<Finding> FindPersonalData(std::span<const std::byte> file) {
    return FindingsOf(AnalyzePicture(file));
}

} // namespace transforms

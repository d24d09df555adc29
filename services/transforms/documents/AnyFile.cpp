#include "services/transforms/documents/AnyFile.h"

#include "services/transforms/documents/OfficeFile.h"
#include "services/transforms/documents/Pdf.h"
#include "services/transforms/personal/PersonalData.h"

namespace transforms {
namespace {

using namespace documents;

struct DocumentFormat {
    bool (*isFormat)(personal::Bytes file);
    personal::Analysis (*analyze)(personal::Bytes file, const DocumentControl& control);
};

constexpr DocumentFormat kFormats[] = {
    {IsOfficePackage, AnalyzeOfficePackage},
    {IsOldContainer, AnalyzeOldContainer},
    {IsPdf, AnalyzePdf},
};

// Null for a picture, and for everything that isn't known.
const DocumentFormat* FormatOf(personal::Bytes file) {
    for (const DocumentFormat& format : kFormats) {
        if (format.isFormat(file)) return &format;
    }
    return nullptr;
}

} // namespace

personal::Analysis AnalyzeFile(std::span<const std::byte> file, const DocumentControl& control) {
    const DocumentFormat* format = FormatOf(file);
    return format ? format->analyze(file, control) : AnalyzePicture(file);
}

CleanedFile CleanFile(std::span<const std::byte> file, const DocumentControl& control) {
    return personal::ResultOf(file, AnalyzeFile(file, control));
}

std::vector<Finding> FindInFile(std::span<const std::byte> file, const DocumentControl& control) {
    return personal::FindingsOf(AnalyzeFile(file, control));
}

} // namespace transforms

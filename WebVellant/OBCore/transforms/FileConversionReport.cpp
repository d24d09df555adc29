#include "OBCore/transforms/FileConversionReport.h"

#include <cwchar>

#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/options/TransformTable.h"
#include "ObLib/Src/Win32/FailFast.h"

namespace obcore {
namespace {

constexpr std::size_t kUsageTextCapacity = 260; // wide characters

} // namespace

void ReportFileConversion(const OBOptions& options) {
    if (!LoadArchiveService() || !WantsTransforms(options)) return;
    wchar_t text[kUsageTextCapacity] = L"file-conversion.type=";
    for (const TransformRow& row : kTransforms) {
        if (options.*row.option) ObLib::AppendOrFailFast(text, kUsageTextCapacity, row.usageWord);
    }
    text[std::wcslen(text) - 1] = L'\0'; // the last comma
    ArchiveService().LogAppletFeature(L"feature.file-conversion", text);
}

} // namespace obcore

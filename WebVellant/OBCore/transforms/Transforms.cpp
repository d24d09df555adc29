#include "OBCore/transforms/Transforms.h"

#include <windows.h>

#include <shlwapi.h>

#include <utility>

#include "OBCore/files/TemporaryFolders.h"
#include "OBCore/transforms/FileConversionReport.h"
#include "OBCore/transforms/TransformProgressDialog.h"
#include "OBCore/transforms/TransformSelection.h"
#include "OBCore/usage/UsageEvents.h"

namespace obcore::CompressUtils {
namespace {

// The files become the result of the run; the browser side deletes the folder and the first file
// when the page is done with them.
void SetResult(OBAttachJob& job, std::vector<std::wstring> files, const std::wstring& folder) {
    job.ResultFolder = folder;
    job.CleanupFolder = folder;
    job.ResultPath = files.front();
    job.CleanupFile = files.front();
    job.ResultName = PathFindFileNameW(files.front().c_str());
    job.ResultIsArchive = false;
    job.Files = std::move(files);
}

} // namespace

bool RunTransforms(OBAttachJob& job, std::vector<std::wstring>& files, const std::wstring& folder) {
    const auto run = std::make_shared<TransformRun>(job, files, folder);
    SelectWantedTransforms(job);
    const bool goOn = !IsAnyTransformSelected(run->Manager) || ShowTransformProgress(*run);
    if (goOn) ReportFileConversion(job);
    files = run->Files();
    return goOn;
}

bool TransformSingleFile(OBAttachJob& job, const std::vector<std::wstring>& files) {
    std::vector<std::wstring> copies = files;
    std::wstring folder;
    if (!GetTemporaryFolder(folder) || !CreateUniqueTempFolder(folder)) return false;
    CopyFilesToFolder(folder, copies);
    if (copies.empty()) return false;
    job.TransformsBeforeArchive = false;
    if (!RunTransforms(job, copies, folder)) return false;
    if (copies.empty()) return false;
    SetResult(job, std::move(copies), folder);
    ReportFileConversion(job); // RunTransforms has sent one as well
    ReportUsage(job);
    return true;
}

} // namespace obcore::CompressUtils

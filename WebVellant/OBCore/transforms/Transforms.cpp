#include "OBCore/transforms/Transforms.h"

#include <windows.h>

#include <shlwapi.h>

#include <utility>

#include "OBCore/files/TemporaryFolders.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/transforms/FileConversionReport.h"
#include "OBCore/transforms/TransformProgressDialog.h"
#include "OBCore/transforms/TransformSelection.h"
#include "OBCore/usage/UsageEvents.h"

namespace obcore::CompressUtils {
namespace {

// The one sentence about a file that can't be copied: the callers only stop the run.
void ShowCopyFailure(const OBAttachJob& job, const std::wstring& path) {
    std::wstring text = LoadText(TextId::CopyFailed);
    FillIn(text, L"%ls", PathFindFileNameW(path.c_str()));
    ShowMessage(job.ParentWindow, text.c_str());
}

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
    if (copies.empty()) {
        if (!files.empty()) ShowCopyFailure(job, files.front());
        return false;
    }
    job.TransformsBeforeArchive = false;
    if (!RunTransforms(job, copies, folder)) return false;
    if (copies.empty()) return false;
    SetResult(job, std::move(copies), folder);
    ReportFileConversion(job); // RunTransforms has sent one as well
    ReportUsage(job);
    return true;
}

} // namespace obcore::CompressUtils

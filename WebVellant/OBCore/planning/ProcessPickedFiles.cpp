#include <utility>

#include "OBCore/compression/CompressFiles.h"
#include "OBCore/files/TemporaryFolders.h"
#include "OBCore/files/WorkingCopy.h"
#include "OBCore/options/TransformTable.h"
#include "OBCore/planning/CloudRoute.h"
#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "OBCore/transforms/Transforms.h"
#include "OBCore/usage/UsageEvents.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"

namespace obcore {
namespace {

bool ConvertsSingleFile(const OBAttachJob& job, const std::vector<std::wstring>& picked) {
    return picked.size() == 1 && !job.MakesZip() && job.SingleAttachConversion &&
           WantsTransformsOfOneFile(job);
}

int AttachAsPicked(OBAttachJob& job, const std::vector<std::wstring>& picked) {
    job.Usage = UsageFlags{};
    ReportUsage(job);
    job.Files = picked;
    return 1;
}

// Without a temporary folder at all the picked paths are used. Where one is named and no folder can
// be made in it, nothing can be copied: the list ends empty, and so does the run. The temporary
// folder itself is everybody's: the copy names only a folder of this run's own.
WorkingCopy CopyPickedFiles(const std::vector<std::wstring>& picked) {
    WorkingCopy copy;
    copy.Files = picked;
    std::wstring folder;
    if (!GetTemporaryFolder(folder)) return copy;
    copy.HasFolder = CreateUniqueTempFolder(folder);
    if (copy.HasFolder) {
        copy.Folder = std::move(folder);
        CompressUtils::CopyFilesToFolder(copy.Folder, copy.Files);
    } else {
        copy.Files.clear();
    }
    return copy;
}

void EndWorkingCopy(const WorkingCopy& copy) noexcept {
    // Out of memory: the copies stay in the temporary folder, and the run isn't undone for it.
    ObLib::RanGuarded([&copy] { CompressUtils::CleanupWorkingCopy(copy); });
}

// Transforms and zips copies of the picked files, which are deleted however the function ends; the
// zip is in a folder of its own.
bool ArchivePickedFiles(OBAttachJob& job, const std::vector<std::wstring>& picked,
                        std::wstring& linkText) {
    WorkingCopy copy = CopyPickedFiles(picked);
    const ObLib::ScopeExit cleanup([&copy]() noexcept { EndWorkingCopy(copy); });
    job.TransformsBeforeArchive = true;
    if (!CompressUtils::RunTransforms(job, copy.Files, copy.Folder)) return false;
    linkText.clear();
    job.Files = copy.Files;
    return CompressUtils::CompressFiles(job);
}

} // namespace

int OBOpenFileNameDlg::ProcessPickedFiles(const std::vector<std::wstring>& picked) {
    OBAttachJob& job = *AttachRecord;
    const std::vector<std::wstring> files = picked; // the caller's list may be one of the job's
    if (ConvertsSingleFile(job, files)) return CompressUtils::TransformSingleFile(job, files);
    if (!job.MakesZip()) return AttachAsPicked(job, files);
    const bool isArchive = files.size() == 1 && CompressUtils::IsAlreadyArchive(job, files.front());
    if (!isArchive && !ArchivePickedFiles(job, files, LinkText)) return 0;
    if (!job.ResultIsArchive) {
        ReportUsage(job);
        return 1;
    }
    return RouteArchive(job, LinkText);
}

} // namespace obcore

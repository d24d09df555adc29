#include "OBCore/cloud/OwnResult.h"

#include <utility>
#include <vector>

#include "OBCore/cloud/ArchiveNames.h"
#include "OBCore/files/Paths.h"
#include "OBCore/files/TemporaryFolders.h"
#include "OBCore/files/WorkingCopy.h"

using obcontract::kCompressionZipx;

namespace obcore {
namespace {

// Everybody's folder, whoever noted it as the run's.
bool IsTemporaryFolder(const std::wstring& folder) {
    std::wstring temporary;
    return GetTemporaryFolder(temporary) && temporary == folder;
}

} // namespace

bool IsOwnResult(const OBAttachJob& job) {
    const std::wstring& folder = job.CleanupFolder; // with its trailing backslash
    return !folder.empty() && job.ResultFolder == folder && job.ResultPath.starts_with(folder) &&
           job.ResultPath.rfind(L'\\') == folder.size() - 1 && !IsTemporaryFolder(folder) &&
           !IsLinkInstead(folder);
}

std::wstring GiveArchiveExtension(OBAttachJob& job) {
    if (IsArchiveName(job.ResultPath)) return {};
    const wchar_t* extension = job.CompressionMethod == kCompressionZipx ? L".zipx" : L".zip";
    job.ResultName = WithExtension(job.ResultName, extension);
    if (!IsOwnResult(job)) return {};
    const std::wstring before = job.ResultPath;
    job.ResultPath = WithExtension(job.ResultPath, extension);
    job.CleanupFile = WithExtension(job.CleanupFile, extension);
    const bool moved = MoveFileExW(ExtendedPath(before).c_str(),
                                   ExtendedPath(job.ResultPath).c_str(), MOVEFILE_COPY_ALLOWED);
    return moved ? std::wstring() : before;
}

void WipeOwnResult(const OBAttachJob& job, const std::wstring& left) {
    if (!IsOwnResult(job)) return;
    std::vector<std::wstring> files = {job.ResultPath};
    if (!left.empty()) files.push_back(left);
    WipeResult(std::move(files), job.ResultFolder);
}

} // namespace obcore

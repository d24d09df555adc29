#include "OBCore/compression/CompressFiles.h"

#include "OBCore/compression/UniqueZipContext.h"
#include "OBCore/compression/ZipEncryption.h"
#include "OBCore/files/Paths.h"
#include "OBCore/files/TemporaryFolders.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/options/AttachmentNaming.h"

using obcontract::kCompressionZipx;

namespace obcore {
namespace {

constexpr std::uint32_t kZipOk = 0;

// Where the zip is written.
struct ZipTarget {
    std::wstring Name;   // file name
    std::wstring Folder; // with its trailing backslash
    std::wstring Path;   // full path
    bool HasOwnFolder = false;
};

UniqueZipContext MakeContext(const std::vector<std::wstring>& files) {
    UniqueZipContext context(ArchiveService().CreateZipContext());
    for (const std::wstring& file : files) ArchiveService().AddFileW(context.Get(), file.c_str());
    return context;
}

void NameZip(const UniqueZipContext& context, ZipTarget& target) {
    target.Path = CombinePath(target.Folder, target.Name);
    ObTrace("SetZipName: %S", target.Path.c_str());
    ArchiveService().SetZipNameW(context.Get(), target.Path.c_str());
    ObTrace("SetTempFolder: %S", target.Folder.c_str());
    ArchiveService().SetTempFolderW(context.Get(), target.Folder.c_str());
}

// Ends the context in both cases. A failed run leaves the folder.
bool RunEngine(const OBAttachJob& job, UniqueZipContext context) {
    ArchiveService().SetCompression(context.Get(), job.CompressionMethod);
    ArchiveService().SetDuplicateReferences(context.Get(), job.DuplicateReferences ? 1 : 0);
    const bool complete = ArchiveService().Zip(job.ParentWindow, context.Get()) == kZipOk;
    context.Reset();
    if (!complete) ShowStringBox(job.ParentWindow, TextId::ZipFailed);
    return complete;
}

void NoteResult(OBAttachJob& job, const ZipTarget& target) {
    // The zip can come about without a folder of its own, when the temporary folder is missing for
    // a moment only. That one is everybody's, and nobody may clean it up.
    const std::wstring own = target.HasOwnFolder ? target.Folder : std::wstring();
    job.CleanupFile = target.Path;
    job.CleanupFolder = own;
    job.ResultFolder = own;
    job.ResultName = target.Name;
    job.ResultPath = target.Path;
    ObTrace("ZipResult: %S", job.ResultPath.c_str());
    job.ResultIsArchive = true;
    job.Usage.UsageZipx = job.CompressionMethod == kCompressionZipx;
}

} // namespace

namespace CompressUtils {

bool CompressFiles(OBAttachJob& job) {
    ZipTarget target;
    if (!BuildAttachmentName(job, target.Name)) return false;
    if (!GetTemporaryFolder(target.Folder)) return false;
    if (!job.MakesZip()) return true;
    job.Usage.UsageZipped = true;
    // Where no folder can be made, the engine fails to write and reports that.
    target.HasOwnFolder = CreateUniqueTempFolder(target.Folder);
    UniqueZipContext context = MakeContext(job.Files);
    NameZip(context, target);
    if (!SetUpEncryption(job, context, target.Folder)) return false;
    if (!RunEngine(job, std::move(context))) return false;
    NoteResult(job, target);
    return true;
}

} // namespace CompressUtils
} // namespace obcore

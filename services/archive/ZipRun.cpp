#include "services/archive/ZipRun.h"

#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/ArchiveTarget.h"
#include "services/archive/ChecksumEraser.h"
#include "services/archive/EntryNames.h"
#include "services/archive/OutputFile.h"
#include "services/archive/Paths.h"
#include "services/archive/RunState.h"
#include "services/archive/SourceFile.h"
#include "services/archive/SourceList.h"

namespace obarchive {
namespace {

// An archive that is being written. Ending it without zip_close drops it.
struct ArchivePolicy : ObLib::NullPolicy<zip_t*> {
    static void Close(zip_t* archive) noexcept { zip_discard(archive); }
};
using UniqueArchive = ObLib::UniqueResource<ArchivePolicy>;

struct LibraryError {
    LibraryError() { zip_error_init(&value); }
    ~LibraryError() { zip_error_fini(&value); }
    LibraryError(const LibraryError&) = delete;
    LibraryError& operator=(const LibraryError&) = delete;

    zip_error_t value;
};

struct EncryptionRow {
    std::uint32_t method; // as the contract counts
    zip_uint16_t engine;  // as the library counts
};
constexpr EncryptionRow kEncryptions[] = {
    {0, ZIP_EM_NONE},
    {obcore::kEncryptionMethodAes128, ZIP_EM_AES_128},
    {obcore::kEncryptionMethodAes256, ZIP_EM_AES_256},
};

const EncryptionRow* FindEncryption(std::uint32_t method) {
    for (const EncryptionRow& row : kEncryptions) {
        if (row.method == method) return &row;
    }
    return nullptr;
}

// The preset's window grows with its number and its match tables with the window: a small file gets
// the smallest window that holds it, so that a thousand small files don't clear gigabytes.
zip_uint32_t XzLevel(std::uint64_t size) {
    constexpr std::uint64_t kMebibyte = 1024 * 1024;
    if (size <= kMebibyte) return 1;
    if (size <= 2 * kMebibyte) return 2;
    if (size <= 4 * kMebibyte) return 3;
    return 6;
}

ZipResult CheckJob(const ZipJob& job) {
    const bool knownCompression = job.compressionMethod == obcore::kCompressionDeflate ||
                                  job.compressionMethod == obcore::kCompressionZipx;
    if (job.target.empty()) return ZipResult::NoTarget;
    if (job.files.empty()) return ZipResult::NoFiles;
    if (!knownCompression || !FindEncryption(job.encryptionMethod)) return ZipResult::UnknownMethod;
    if (job.encryptionMethod != 0 && job.password.Empty()) return ZipResult::PasswordMissing;
    if (job.recoveryAsked) return ZipResult::RecoveryNotThere;
    return ZipResult::Stands;
}

// Both fields tell the time of the last change in world time, where the zip's own field tells it as
// a wall clock of two-second steps.
bool AddTimes(zip_t* archive, zip_uint64_t index, const SourceFacts& facts) {
    constexpr zip_uint16_t kNtfsField = 0x000a;
    zip_uint8_t ntfs[32] = {0, 0, 0, 0, 1, 0, 24, 0}; // reserved, tag 1 of 24 bytes: three times
    for (std::size_t place = 8; place < sizeof ntfs; place += sizeof(FILETIME)) {
        std::memcpy(ntfs + place, &facts.lastWrite, sizeof(FILETIME));
    }
    if (zip_file_extra_field_set(archive, index, kNtfsField, ZIP_EXTRA_FIELD_NEW, ntfs, sizeof ntfs,
                                 ZIP_FL_CENTRAL) != 0) {
        return false;
    }
    constexpr zip_uint16_t kUnixField = 0x5455;
    const std::int64_t seconds = ZipTime(facts.lastWrite);
    if (seconds > INT32_MAX) return true; // 32 bits: until 2038
    zip_uint8_t unixTime[5] = {1};        // the last change only
    std::memcpy(unixTime + 1, &seconds, 4);
    return zip_file_extra_field_set(archive, index, kUnixField, ZIP_EXTRA_FIELD_NEW, unixTime,
                                    sizeof unixTime, ZIP_FL_CENTRAL | ZIP_FL_LOCAL) == 0;
}

bool SetCompression(zip_t* archive, zip_uint64_t index, const ZipJob& job, std::uint64_t size) {
    constexpr zip_uint32_t kDeflateLevel = 6;
    // Nothing can't be made smaller, and some readers stumble over an empty xz stream.
    if (size == 0) return zip_set_file_compression(archive, index, ZIP_CM_STORE, 0) == 0;
    if (job.compressionMethod == obcore::kCompressionZipx) {
        return zip_set_file_compression(archive, index, ZIP_CM_XZ, XzLevel(size)) == 0;
    }
    return zip_set_file_compression(archive, index, ZIP_CM_DEFLATE, kDeflateLevel) == 0;
}

bool SetEncryption(zip_t* archive, zip_uint64_t index, const ZipJob& job) {
    const EncryptionRow* encryption = FindEncryption(job.encryptionMethod);
    if (encryption->engine == ZIP_EM_NONE) return true;
    return zip_file_set_encryption(archive, index, encryption->engine, job.password.Text()) == 0;
}

// False with the run's failure noted.
bool AddEntry(zip_t* archive, const std::wstring& path, const std::wstring& name, const ZipJob& job,
              RunState& run) {
    SourceFacts facts;
    if (path.empty()) run.Fail(ZipResult::PathTooLong);
    if (path.empty() || !ReadSourceFacts(path, facts, run)) return false;
    zip_source_t* source = MakeSource(path, facts, run, zip_get_error(archive));
    if (!source) return false;
    const zip_int64_t index = zip_file_add(archive, ToUtf8(name).c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    const auto place = static_cast<zip_uint64_t>(index);
    return SetCompression(archive, place, job, facts.size) && SetEncryption(archive, place, job) &&
           AddTimes(archive, place, facts);
}

UniqueArchive OpenArchive(OutputFile& output, RunState& run) {
    LibraryError error;
    zip_source_t* target = MakeArchiveTarget(output, run, &error.value);
    if (!target) return {};
    UniqueArchive archive(zip_open_from_source(target, ZIP_CREATE, &error.value));
    if (!archive) zip_source_free(target);
    return archive;
}

ZipResult LibraryFailure(zip_t* archive) {
    const bool memory = archive && zip_error_code_zip(zip_get_error(archive)) == ZIP_ER_MEMORY;
    return memory || !archive ? ZipResult::OutOfMemory : ZipResult::EngineFailed;
}

// False also when it is too long for an archive: what stands in it was asked for.
bool SetComment(zip_t* archive, const std::string& comment) {
    if (comment.empty()) return true;
    if (comment.size() > UINT16_MAX) return false;
    const auto length = static_cast<zip_uint16_t>(comment.size());
    return zip_set_archive_comment(archive, comment.data(), length) == 0;
}

// Writes every entry into `output`; the file has no name yet.
ZipResult WriteEntries(const ZipJob& job, OutputFile& output, RunState& run) {
    UniqueArchive archive = OpenArchive(output, run);
    bool done = archive && SetComment(archive.Get(), job.comment);
    const std::vector<std::wstring> paths = DistinctSources(job.files);
    const std::vector<std::wstring> names = UniqueEntryNames(paths);
    for (std::size_t index = 0; done && index < paths.size(); ++index) {
        done = AddEntry(archive.Get(), paths[index], names[index], job, run);
    }
    done = done && zip_close(archive.Get()) == 0;
    if (!done) run.Fail(LibraryFailure(archive.Get()));
    // A closed archive is gone; one that couldn't be closed is dropped here.
    if (done) static_cast<void>(archive.Release());
    return run.failure;
}

} // namespace

ZipResult RunZip(const ZipJob& job, const ProgressCallback& progress, std::wstring* failedFile) {
    if (failedFile) failedFile->clear();
    const ZipResult fit = CheckJob(job);
    if (fit != ZipResult::Stands) return fit;
    const std::wstring target = FullPath(job.target);
    if (target.empty()) return ZipResult::PathTooLong;
    OutputFile output;
    const ZipResult created = output.Create(target, job.temporaryFolder);
    if (created != ZipResult::Stands) return created;
    RunState run;
    run.progress = &progress;
    const ZipResult written = WriteEntries(job, output, run);
    if (written != ZipResult::Stands && failedFile) *failedFile = run.failedFile;
    if (written != ZipResult::Stands) return written;
    if (job.encryptionMethod != 0 && !EraseEncryptedChecksums(output, job.comment.size())) {
        const ZipResult failure = output.LastFailure();
        return failure == ZipResult::Stands ? ZipResult::EngineFailed : failure;
    }
    return output.Commit();
}

} // namespace obarchive

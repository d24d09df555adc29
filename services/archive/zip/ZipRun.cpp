#include "services/archive/zip/ZipRun.h"

#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "services/archive/Paths.h"
#include "services/archive/crypto/Ae2Algorithms.h"
#include "services/archive/zip/ArchiveTarget.h"
#include "services/archive/zip/EntryNames.h"
#include "services/archive/zip/EntrySource.h"
#include "services/archive/zip/OutputFile.h"
#include "services/archive/zip/RunState.h"
#include "services/archive/zip/SourceList.h"

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
    std::size_t keySize;  // bytes
};
constexpr EncryptionRow kEncryptions[] = {
    {0, ZIP_EM_NONE, 0},
    {obcontract::kEncryptionMethodAes128, ZIP_EM_AES_128, 16},
    {obcontract::kEncryptionMethodAes256, ZIP_EM_AES_256, 32},
};

const EncryptionRow* FindEncryption(std::uint32_t method) {
    for (const EncryptionRow& row : kEncryptions) {
        if (row.method == method) return &row;
    }
    return nullptr;
}

ZipResult CheckJob(const ZipJob& job) {
    const bool knownCompression = job.compressionMethod == obcontract::kCompressionDeflate ||
                                  job.compressionMethod == obcontract::kCompressionZipx;
    if (job.target.empty()) return ZipResult::NoTarget;
    if (job.files.empty()) return ZipResult::NoFiles;
    if (!knownCompression || !FindEncryption(job.encryptionMethod)) return ZipResult::UnknownMethod;
    if (job.encryptionMethod != 0 && job.password.Empty()) return ZipResult::PasswordMissing;
    if (job.encryptionMethod == 0 && !job.password.Empty()) return ZipResult::EncryptionMissing;
    if (job.recoveryAsked) return ZipResult::RecoveryNotThere;
    return ZipResult::Ok;
}

// The entry's own field is a wall clock of two-second steps. The system converts to it: the C
// runtime, which the library would ask, reads a variable TZ of the environment in a form of its
// own. Times outside 1980 to 2107 stay with the library.
bool SetWallClock(zip_t* archive, zip_uint64_t index, const FILETIME& time) {
    SYSTEMTIME universal;
    SYSTEMTIME local;
    if (!FileTimeToSystemTime(&time, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) || local.wYear < 1980 ||
        local.wYear > 2107) {
        return true;
    }
    const int date = (local.wYear - 1980) << 9 | local.wMonth << 5 | local.wDay;
    const int clock = local.wHour << 11 | local.wMinute << 5 | local.wSecond / 2;
    return zip_file_set_dostime(archive, index, static_cast<zip_uint16_t>(clock),
                                static_cast<zip_uint16_t>(date), 0) == 0;
}

// Both fields are the time of the last change in universal time.
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

// The entry's data comes encrypted, so the library gets no password.
bool SetEncryption(zip_t* archive, zip_uint64_t index, const EncryptionRow& encryption) {
    if (encryption.engine == ZIP_EM_NONE) return true;
    return zip_file_set_encryption(archive, index, encryption.engine, nullptr) == 0;
}

bool AddEntry(zip_t* archive, StreamContext& streams, std::size_t entry,
              const EncryptionRow& encryption) {
    zip_source_t* source =
        MakeEntrySource(streams, entry, encryption.engine, zip_get_error(archive));
    if (!source) return false;
    const SourceEntry& file = streams.sources[entry];
    const zip_int64_t index = zip_file_add(archive, file.name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    const auto place = static_cast<zip_uint64_t>(index);
    return SetEncryption(archive, place, encryption) &&
           SetWallClock(archive, place, file.facts.lastWrite) &&
           AddTimes(archive, place, file.facts);
}

// What the run stores, with the sizes that say how much there is to do. False with the run's
// failure noted.
bool ListSources(const ZipJob& job, std::vector<SourceEntry>& sources, RunState& run) {
    std::optional<std::wstring> tooLong;
    const std::vector<std::wstring> paths = DistinctSources(job.files, &tooLong);
    if (tooLong) return run.Fail(ZipResult::PathTooLong, *tooLong), false;
    const std::vector<std::wstring> names = UniqueEntryNames(paths);
    for (std::size_t index = 0; index < paths.size(); ++index) {
        SourceFacts facts;
        if (!ReadSourceFacts(paths[index], facts, run)) return false;
        run.totalBytes += facts.size;
        sources.push_back({paths[index], ObLib::ToUtf8(names[index]), facts});
    }
    return true;
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

// False also when the comment is too long for an archive: the user asked for what it contains.
bool SetComment(zip_t* archive, const std::string& comment) {
    if (comment.empty()) return true;
    if (comment.size() > UINT16_MAX) return false;
    const auto length = static_cast<zip_uint16_t>(comment.size());
    return zip_set_archive_comment(archive, comment.data(), length) == 0;
}

// Everything that lives while entries are written, in the order in which each needs those before
// it: so the archive ends first, and the workers before what their tasks look at.
class ArchiveRun {
public:
    ArchiveRun(const ZipJob& job, std::vector<SourceEntry> sources,
               std::unique_ptr<Ae2Algorithms> algorithms, OutputFile& output, RunState& run)
        : job_(job), run_(run), encryption_(*FindEncryption(job.encryptionMethod)),
          sources_(std::move(sources)),
          algorithms_(std::move(algorithms)), settings_{nullptr, nullptr, &spare_},
          ahead_(sources_, job, settings_, encryption_.keySize, run, pool_),
          streams_{ahead_,
                   output,
                   run,
                   settings_,
                   sources_,
                   job.duplicateReferences,
                   std::vector<EntryRecord>(sources_.size())},
          archive_(OpenArchive(output, run)) {
        if (!algorithms_) return;
        keys_.emplace(*algorithms_, job.password, encryption_.keySize);
        settings_.algorithms = algorithms_.get();
        settings_.keys = &*keys_;
    }

    // The run's result; the file has no name yet.
    ZipResult Write() {
        const bool done = archive_ && SetComment(archive_.Get(), job_.comment) && WriteArchive();
        if (!done) run_.Fail(LibraryFailure(archive_.Get()));
        // A closed archive is gone; one that couldn't be closed is dropped with this object.
        if (done) static_cast<void>(archive_.Release());
        return run_.failure;
    }

private:
    // Adds every entry and has the library write them, which pulls their data in order.
    bool WriteArchive() {
        for (std::size_t entry = 0; entry < sources_.size(); ++entry) {
            if (!AddEntry(archive_.Get(), streams_, entry, encryption_)) return false;
        }
        return zip_close(archive_.Get()) == 0;
    }

    const ZipJob& job_;
    RunState& run_;
    const EncryptionRow& encryption_;
    std::vector<SourceEntry> sources_;
    std::unique_ptr<Ae2Algorithms> algorithms_; // null without encryption
    std::optional<Ae2KeyMaker> keys_;
    SpareBlocks spare_{4 * kBlockSize};
    PackSettings settings_;
    WorkerPool pool_;
    ReadAhead ahead_;
    StreamContext streams_;
    UniqueArchive archive_;
};

// Writes every entry into `output`; the file has no name yet.
ZipResult WriteEntries(const ZipJob& job, OutputFile& output, RunState& run) {
    std::vector<SourceEntry> sources;
    if (!ListSources(job, sources, run)) return run.failure;
    std::unique_ptr<Ae2Algorithms> algorithms;
    if (job.encryptionMethod != 0) {
        algorithms = MakeAe2Algorithms(CryptographyToUse());
        if (!algorithms) return ZipResult::EngineFailed;
    }
    return ArchiveRun(job, std::move(sources), std::move(algorithms), output, run).Write();
}

} // namespace

ZipResult RunZip(const ZipJob& job, const ProgressCallback& progress, RunPaths* paths) {
    const ZipResult fit = CheckJob(job);
    if (fit != ZipResult::Ok) return fit;
    RunPaths unwanted;
    RunPaths& noted = paths ? *paths : unwanted;
    noted = {FullPath(job.target), {}};
    if (noted.target.empty()) return noted.failed = job.target, ZipResult::PathTooLong;
    OutputFile output;
    const ZipResult created = output.Create(noted.target, job.temporaryFolder);
    if (created != ZipResult::Ok) return created;
    RunState run;
    run.progress = &progress;
    const ZipResult written = WriteEntries(job, output, run);
    if (written != ZipResult::Ok) return noted.failed = run.failedFile, written;
    return output.Commit();
}

} // namespace obarchive

// What a context collects until Zip runs, and how a run reports its progress.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "contracts/ArchiveService.h"
#include "services/archive/crypto/Secret.h"

namespace obarchive {

struct ZipJob {
    std::wstring target;          // path of the zip
    std::wstring temporaryFolder; // empty: the target's own folder
    std::vector<std::wstring> files;
    std::uint32_t compressionMethod = obcontract::kCompressionDeflate;
    std::uint32_t encryptionMethod = 0; // one method bit, 0 for none
    Secret password;
    bool recoveryAsked = false; // a public key was handed over; a run that finds it set refuses
    std::wstring recoveryKey;   // the key's text; empty when none was handed over
    std::string comment;        // the archive's own, in ASCII; longer than 65,535 bytes fails
    bool duplicateReferences = false; // files with equal content are compressed once
};

struct ZipProgress {
    const std::wstring& file;     // the source that was read last
    std::uint64_t bytesRead;      // of all sources so far
    std::uint64_t totalBytes = 0; // of all sources
};

// Called on the thread of the run, after each piece that was read from a source and at least every
// 100 milliseconds while others work. False cancels the run. It may throw; the run then ends
// without a trace.
using ProgressCallback = std::function<bool(const ZipProgress&)>;

} // namespace obarchive

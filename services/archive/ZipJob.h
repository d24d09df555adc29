// What a context collects until Zip runs, and how a run tells how far it is.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "contracts/ArchiveService.h"
#include "services/archive/Secret.h"

namespace obarchive {

struct ZipJob {
    std::wstring target;          // path of the zip
    std::wstring temporaryFolder; // empty: the target's own folder
    std::vector<std::wstring> files;
    std::uint32_t compressionMethod = obcore::kCompressionDeflate;
    std::uint32_t encryptionMethod = 0; // one method bit, 0 for none
    Secret password;
    bool recoveryAsked = false; // a public key was handed over; a run that finds it set refuses
    std::wstring recoveryKey;   // the key's text; empty when none was handed over
    std::string comment;        // the archive's own, in ASCII; longer than 65,535 bytes fails
    bool duplicateReferences = false; // kept; every file is still compressed on its own
};

struct ZipProgress {
    const std::wstring& file;     // the source that is being read
    std::uint64_t bytesRead;      // of all sources so far
    std::uint64_t totalBytes = 0; // of all sources; 0 while it isn't known
};

// Called on the thread of the run after each piece that was read from a source. False cancels the
// run. It may throw; the run then ends without a trace.
using ProgressCallback = std::function<bool(const ZipProgress&)>;

} // namespace obarchive

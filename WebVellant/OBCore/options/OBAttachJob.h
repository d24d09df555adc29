// One picker run: the options with the provider manager, the picked files and the results.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

#include "OBCore/options/OBOptions.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// The switches of a usage report about a send; read as five bytes in this order.
struct UsageFlags {
    bool UsageZipped = false;
    bool UsageZipx = false;
    bool UsageExpiry = false;
    bool UsageEncrypted = false;
    bool UsageLink = false;
};
static_assert(sizeof(UsageFlags) == 5);

// Lives on the driver's stack for one run and is passed by reference through picker, pipeline and
// cloud upload. Belongs to the picker's dialog thread. Owns the provider manager that it created
// and deletes it exactly once, when it ends.
struct OBAttachJob : OBOptions {
    // Copies `options`, creates the provider manager (LoadProviderManager() must have succeeded),
    // and finds the image file of the process that owns `parent`'s owner window.
    OBAttachJob(const OBOptions& options, HWND parent);
    OBAttachJob(const OBAttachJob&) = delete;
    OBAttachJob& operator=(const OBAttachJob&) = delete;
    ~OBAttachJob();

    // Takes over the fields of `options` and leaves the run's own fields alone.
    OBAttachJob& operator=(const OBOptions& options);

    obcontract::ProviderManagerHandle OwnedProviderManager = nullptr;
    obcontract::ProviderProfile SelectedStorageProvider{}; // providerId 0: none is chosen
    std::vector<std::wstring> Files;                       // as they finally go to the page
    std::wstring ResultName;                               // of the result, without its folder
    std::wstring ResultPath;                               // full path of the result zip
    std::wstring ResultFolder;                             // with its trailing backslash
    std::wstring CleanupFolder;                            // temporary folder of this run
    std::wstring CleanupFile;                              // temporary file of this run
    bool NameWithoutArchive = true;                        // keeps its value in the whole system
    bool ResultIsArchive = false;         // the result is one zip that ResultPath names
    bool UploadBlocked = false;           // cloud links are forbidden for this request
    HWND ParentWindow = nullptr;          // owner of every dialog of the pipeline
    bool TransformsBeforeArchive = false; // the transforms run ahead of a zip
    UsageFlags Usage;                     // five bytes in a row for the usage report
    std::wstring BrowserImagePath;        // image file of the browser, may be empty
};

} // namespace obcore

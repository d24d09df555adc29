// What both drivers do before the dialog and undo after it: the run's record with its provider
// manager, and the language of the thread.
#pragma once

#include <windows.h>

#include "OBCore/modules/ThreadLanguage.h"
#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// An object on the driver's stack, on the host's main thread; archive service and provider manager
// are bound. The destructor restores the thread's language and then deletes the provider manager,
// also when an exception passes. `PickerSequence` has called `Deinit` by then.
class AttachmentSetup {
public:
    // The order: `uploadBlocked` is stored, the provider manager is initialised, the options are
    // loaded, which ask the manager what it supports.
    AttachmentSetup(HWND owner, bool uploadBlocked);
    AttachmentSetup(const AttachmentSetup&) = delete;
    AttachmentSetup& operator=(const AttachmentSetup&) = delete;

    OBAttachJob& Job() noexcept { return job_; }

private:
    OBAttachJob job_;
    ThreadLanguageScope language_; // after the record: it is set from the loaded options
};

} // namespace obcore

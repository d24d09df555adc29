// What both drivers do before the dialog and undo after it: the run's record with its provider
// manager, and the language of the thread.
#pragma once

#include <windows.h>

#include "OBCore/modules/ThreadLanguage.h"
#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Lives on the driver's stack, on the host's main thread; archive service and provider manager are
// bound. Its end puts the thread's language back and then deletes the provider manager, also when
// an exception passes. `Deinit` isn't part of it: that belongs to the end of the dialog.
class AttachmentSetup {
public:
    // `uploadBlocked` is in the record before the provider manager is initialised, and that is
    // before the options are loaded, which ask it what it supports.
    AttachmentSetup(HWND owner, bool uploadBlocked);
    AttachmentSetup(const AttachmentSetup&) = delete;
    AttachmentSetup& operator=(const AttachmentSetup&) = delete;

    OBAttachJob& Job() noexcept { return job_; }

private:
    OBAttachJob job_;
    ThreadLanguageScope language_; // behind the record: it is set from the loaded options
};

} // namespace obcore

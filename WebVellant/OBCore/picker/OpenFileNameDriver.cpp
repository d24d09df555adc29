#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/picker/AttachmentSetup.h"
#include "OBCore/picker/Drivers.h"
#include "OBCore/picker/Win7Dlg.h"

using obcontract::ExchangeBlock;

namespace obcore {
namespace {

// COM for the length of the run. A thread that is in another apartment already keeps that one.
class ComApartment {
public:
    ComApartment() : initialized_(SUCCEEDED(CoInitialize(nullptr))) {}
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment() {
        if (!initialized_) return;
        CoUninitialize();
        ObTrace("CoUninitialize and return.");
    }

private:
    bool initialized_;
};

const wchar_t* EndOf(const ExchangeBlock& block) {
    return reinterpret_cast<const wchar_t*>(&block + 1);
}

// The dialog object is gone when this returns; the record keeps the names to clean up.
BOOL RunPicker(OPENFILENAMEW* request, ExchangeBlock& block, OBAttachJob& job) {
    Win7Dlg picker(request, EndOf(block), job);
    const BOOL result = picker.ShowPickerDialog();
    if (!picker.LinkText.empty()) WriteLinkAnswer(block, picker.LinkText);
    return result;
}

} // namespace

BOOL OpenFileNameDriver(OPENFILENAMEW* request, ExchangeBlock& block) {
    AttachmentSetup setup(request->hwndOwner, block.UploadBlocked != 0);
    OBAttachJob& job = setup.Job();
    const ComApartment com;
    const BOOL result = RunPicker(request, block, job);
    WriteCleanupNames(block, job.CleanupFolder.c_str(), job.CleanupFile.c_str());
    return result;
}

} // namespace obcore

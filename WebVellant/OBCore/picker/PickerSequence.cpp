#include "OBCore/picker/PickerSequence.h"

#include <utility>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/TraceFailure.h"
#include "OBCore/picker/PickerControls.h"
#include "OBCore/picker/PickerHooks.h"
#include "OBCore/picker/ShellDialog.h"
#include "contracts/ExchangeBlock.h"

namespace obcore {
namespace {

using obcontract::kCancelled;

} // namespace

PickerSequence::~PickerSequence() {
    events_.reset();
    dialog_.Reset();
    ProviderManager().Deinit(job_.OwnedProviderManager);
}

PickerAnswer PickerSequence::Run(ObLib::ComPtr<IFileOpenDialog> dialog,
                                 const PickerRequest& request, OBOpenFileNameDlg& run,
                                 std::wstring& lastPicked) {
    dialog_ = std::move(dialog);
    events_.emplace(*dialog_.Get(), job_, request.allowMultiSelect);
    AddPickerControls(*dialog_.Get(), request.owner, job_);
    PickerAnswer answer;
    Show(request, answer);
    if (SUCCEEDED(answer.shown)) ProcessConfirmed(request, run, lastPicked, answer);
    return answer;
}

void PickerSequence::Show(const PickerRequest& request, PickerAnswer& answer) {
    PickerHooks hooks(job_.OwnedProviderManager);
    if (request.setsFolder) TraceFailure("SetFolder", dialog_->SetFolder(request.folder));
    answer.shown = dialog_->Show(request.owner);
    if (answer.shown != kCancelled) TraceFailure("Show", answer.shown);
    hooks.MoveLinkText(answer.linkText);
}

void PickerSequence::ProcessConfirmed(const PickerRequest& request, OBOpenFileNameDlg& run,
                                      std::wstring& lastPicked, PickerAnswer& answer) {
    const bool hasButtonLink = !answer.linkText.empty();
    if (request.passesButtonLink) run.LinkText = answer.linkText;
    std::vector<std::wstring> picked;
    const bool collected = CollectPickedPaths(*dialog_.Get(), picked, lastPicked);
    if (collected || request.processesEmptyResults) {
        answer.hasFiles = run.ProcessPickedFiles(picked) != 0;
    }
    if (hasButtonLink && !request.passesButtonLink) answer.hasFiles = false;
    if (answer.hasFiles) {
        answer.files =
            job_.ResultIsArchive ? std::vector<std::wstring>{job_.ResultPath} : job_.Files;
    }
    answer.linkText = run.LinkText;
}

} // namespace obcore

#include "obwmv/BrowserRequest.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <string>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeMapping.h"
#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/exchange/PickedFiles.h"
#include "obwmv/HostLaunch.h"
#include "obwmv/SiteRules.h"

using obcontract::BrowserContext;
using obcontract::ExchangeBlock;
using obcontract::ExchangeStatus;

namespace obwmv {
namespace {

// The last id that a block of the dialog entry point was given; the first of a process is 1.
std::atomic<std::uint32_t> dialogId = 0;

// The answer is read from a private copy: a process that the host has started may still have the
// block mapped.
std::unique_ptr<const ExchangeBlock> CopyAnswer(const ExchangeBlock& block) {
    return std::make_unique<const ExchangeBlock>(block);
}

void DeliverLink(const ExchangeBlock& answer, BrowserContext& context) {
    const std::wstring link = obcore::ReadText(answer, answer.Link.LinkOffset);
    if (!link.empty()) context.InsertLinkText(link.c_str());
}

void DeliverFileList(const ExchangeBlock& answer, OPENFILENAMEW& request) {
    if (!request.lpstrFile) return;
    const std::wstring list = obcore::ReadFileList(answer);
    std::memcpy(request.lpstrFile, list.data(), list.size() * sizeof(wchar_t));
}

void DeliverPickedFiles(const ExchangeBlock& answer, const IFileDialog* dialog) {
    obcore::PickedFiles picked;
    obcore::ReadDialogResult(answer, picked);
    obcore::Results().insert_or_assign(obcore::ResultKey(dialog), std::move(picked));
}

// A file offset that isn't 0 passes its text on also when that is empty. An offset outside the text
// area counts as absent.
void DeliverCleanupNames(const ExchangeBlock& answer, BrowserContext& context) {
    const std::wstring folder = obcore::ReadText(answer, answer.CleanupFolderOffset);
    if (folder.empty()) return;
    const bool hasFile = obcore::RoomFrom(answer.CleanupFileOffset) != 0;
    const std::wstring file = obcore::ReadText(answer, answer.CleanupFileOffset);
    context.NoteCleanupFiles(folder.c_str(), hasFile ? file.c_str() : nullptr);
}

} // namespace

BOOL RunOpenFileNameRequest(OPENFILENAMEW* request, BrowserContext* context) {
    const std::uint32_t id = GetCurrentThreadId();
    ObLib::UniqueKernelHandle mapping;
    const obcore::MappedExchangeBlock view = obcore::CreateExchangeBlock(id, mapping);
    if (!view) return FALSE;
    ExchangeBlock& block = *view.Get();
    obcore::WriteOpenFileNameRequest(block, *request);
    block.UploadBlocked = IsLinkForbidden(context->GetPageUrl(), request->lpstrFilter) ? 1 : 0;
    if (ShowWithLayer(id, request->hwndOwner) != 0) return FALSE;

    const auto answer = CopyAnswer(block);
    if (answer->Status == ExchangeStatus::LinkAnswer)
        DeliverLink(*answer, *context);
    else if (answer->Status == ExchangeStatus::OpenFileNameTaken && answer->Result != 0)
        DeliverFileList(*answer, *request);
    DeliverCleanupNames(*answer, *context);
    return answer->Result;
}

HRESULT RunDialogRequest(IFileDialog* dialog, HWND owner, BrowserContext* context) {
    obcore::Results().clear();
    const std::uint32_t id = ++dialogId;
    ObLib::UniqueKernelHandle mapping;
    const obcore::MappedExchangeBlock view = obcore::CreateExchangeBlock(id, mapping);
    if (!view) return kCancelled;
    ExchangeBlock& block = *view.Get();
    FILEOPENDIALOGOPTIONS options = 0;
    dialog->GetOptions(&options);
    block.DialogOptions = options;
    block.Status = ExchangeStatus::DialogRequest;
    if (ShowWithLayer(id, owner) != 0) return kCancelled;

    const auto answer = CopyAnswer(block);
    if (answer->Status == ExchangeStatus::LinkAnswer)
        DeliverLink(*answer, *context);
    else if (answer->Status == ExchangeStatus::DialogAnswer && answer->Result >= 0)
        DeliverPickedFiles(*answer, dialog);
    DeliverCleanupNames(*answer, *context);
    return answer->Result;
}

} // namespace obwmv

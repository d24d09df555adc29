#include "obwmv/OBHook.h"

#include <shlobj.h>

#include <string>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/BrowserRequest.h"
#include "obwmv/HostEntry.h"
#include "obwmv/Library.h"
#include "obwmv/ParentWindowAdjuster.h"
#include "obwmv/SiteRules.h"

using obcontract::BrowserContext;

namespace obwmv {
namespace {

constexpr char kSource[] = "obwmv\\OBHook";
constexpr wchar_t kHelpTopic[] = L"Help About Topic";

// The hook's veto is asked last, and only when the site rules let the picker through.
bool IsPickerFor(BrowserContext& context) {
    const std::wstring url = context.GetPageUrl();
    return !UsesBrowserDialog(url.c_str()) && context.IsPickerWanted() != 0;
}

// Settles `owner` for the length of `run`; it holds its old value at the end, also when an
// exception passes.
template <class Run>
auto RunWithSettledOwner(HWND& owner, BrowserContext& context, Progress& progress, Run run) {
    const std::int32_t classCount = context.GetBrowserWindowClassCount();
    const wchar_t* const* classNames = context.GetBrowserWindowClasses();
    const BrowserWindowFinder finder(&owner, classNames, classCount);
    const ParentWindowAdjuster adjuster(&owner);
    progress = Progress::Answering;
    return run();
}

// What the last run of `dialog` gave, as a copy; nothing when it gave no files.
std::optional<obcore::PickedFiles> PickedIn(const IFileDialog* dialog) {
    const obcore::ResultMap& results = obcore::Results();
    const auto entry = results.find(obcore::ResultKey(dialog));
    if (entry == results.end()) return std::nullopt;
    return entry->second;
}

std::vector<ObLib::UniqueItemIdList> ItemIdLists(const std::vector<std::wstring>& paths) {
    std::vector<ObLib::UniqueItemIdList> lists;
    lists.reserve(paths.size());
    for (const std::wstring& path : paths) lists.emplace_back(ILCreateFromPathW(path.c_str()));
    return lists;
}

bool BindAllModules() {
    return obcore::LoadArchiveService() && obcore::BindResourceModule() &&
           obcore::LoadProviderManager();
}

} // namespace

std::optional<BOOL> AnswerOpenFileName(OPENFILENAMEW* request, BrowserContext* context,
                                       Progress& progress) {
    if (!obcore::BindResourceModule()) return std::nullopt;
    const ActivationScope activation;
    if (!activation) return std::nullopt;
    obcore::Check(request != nullptr, "open_file_name != NULL", kSource, 326);
    obcore::Check(context != nullptr, "browser_context != NULL", kSource, 327);
    if (!IsPickerFor(*context)) {
        progress = Progress::Answering;
        return context->CallGetOpenFileName(request);
    }
    return RunWithSettledOwner(request->hwndOwner, *context, progress,
                               [&] { return RunOpenFileNameRequest(request, context); });
}

std::optional<HRESULT> AnswerShow(IFileDialog* dialog, HWND owner, BrowserContext* context,
                                  Progress& progress) {
    if (!obcore::BindResourceModule()) return std::nullopt;
    const ActivationScope activation;
    if (!activation) return std::nullopt;
    if (!IsPickerFor(*context)) {
        progress = Progress::Answering;
        return context->CallShow(dialog, owner);
    }
    return RunWithSettledOwner(owner, *context, progress,
                               [&] { return RunDialogRequest(dialog, owner, context); });
}

HRESULT AnswerGetResult(IFileDialog* dialog, IShellItem** out, BrowserContext* context) {
    const auto picked = PickedIn(dialog);
    if (!picked) return context->CallGetResult(dialog, out);
    if (picked->paths.size() != 1) return S_FALSE;
    const ObLib::UniqueItemIdList list(ILCreateFromPathW(picked->paths.front().c_str()));
    // The page learns of a path that has gone since only by the item that isn't there.
    SHCreateItemFromIDList(list.Get(), IID_IShellItem, reinterpret_cast<void**>(out));
    return S_OK;
}

HRESULT AnswerGetResults(IFileDialog* dialog, IShellItemArray** out, BrowserContext* context) {
    const auto picked = PickedIn(dialog);
    if (!picked) return context->CallGetResults(dialog, out);
    if (picked->paths.empty()) return S_FALSE;
    const auto lists = ItemIdLists(picked->paths);
    std::vector<PCIDLIST_ABSOLUTE> items;
    items.reserve(lists.size());
    for (const auto& list : lists) items.push_back(list.Get());
    SHCreateShellItemArrayFromIDLists(static_cast<UINT>(items.size()), items.data(), out);
    return S_OK;
}

int AnswerInHost(HWND owner, std::uint32_t id) {
    if (!BindAllModules()) return -1;
    obcore::ArchiveService().LogLaunch();
    const ActivationScope activation;
    if (!activation) return -1; // without LogExit
    const ObLib::ScopeExit logExit([] { obcore::ArchiveService().LogExit(); });
    return HostEntry(owner, id);
}

bool AnswerWebHelp(HWND owner) {
    if (!obcore::LoadArchiveService()) return false;
    obcore::ArchiveService().WebHelpW(owner, kHelpTopic, kHelpTopic);
    return true;
}

} // namespace obwmv

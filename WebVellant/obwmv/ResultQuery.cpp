#include "obwmv/ResultQuery.h"

#include <shlobj.h>

#include <optional>
#include <string>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/TraceFailure.h"
#include "ObLib/Src/Win32/ComResources.h"

using obcontract::BrowserContext;

namespace obwmv {
namespace {

// A copy of what the last run of `dialog` gave: the calls into the shell below may let another
// request run, which empties the map. Nothing when the run gave no files.
std::optional<obcore::PickedFiles> PickedIn(const IFileDialog* dialog) {
    const obcore::ResultMap& results = obcore::Results();
    const auto entry = results.find(obcore::ResultKey(dialog));
    if (entry == results.end()) return std::nullopt;
    return entry->second;
}

// Empty for a path that has gone.
ObLib::UniqueItemIdList ItemIdList(const std::wstring& path) {
    ObLib::UniqueItemIdList list(ILCreateFromPathW(path.c_str()));
    if (!list) obcore::ObTrace("ILCreateFromPathW failed %x", GetLastError());
    return list;
}

// One path without a list would cost the page the array of all the others.
std::vector<ObLib::UniqueItemIdList> ItemIdLists(const std::vector<std::wstring>& paths) {
    std::vector<ObLib::UniqueItemIdList> lists;
    lists.reserve(paths.size());
    for (const std::wstring& path : paths) {
        if (ObLib::UniqueItemIdList list = ItemIdList(path)) lists.push_back(std::move(list));
    }
    return lists;
}

} // namespace

HRESULT AnswerGetResult(IFileDialog* dialog, IShellItem** out, BrowserContext* context) {
    const auto picked = PickedIn(dialog);
    if (!picked) return context->CallGetResult(dialog, out);
    if (picked->paths.size() != 1) return S_FALSE;
    const ObLib::UniqueItemIdList list = ItemIdList(picked->paths.front());
    obcore::TraceFailure(
        "SHCreateItemFromIDList",
        SHCreateItemFromIDList(list.Get(), IID_IShellItem, reinterpret_cast<void**>(out)));
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
    obcore::TraceFailure(
        "SHCreateShellItemArrayFromIDLists",
        SHCreateShellItemArrayFromIDLists(static_cast<UINT>(items.size()), items.data(), out));
    return S_OK;
}

} // namespace obwmv

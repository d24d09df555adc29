#include "services/providers/storage/CloudLists.h"

#include <iterator>
#include <utility>

#include "services/providers/storage/RecordTexts.h"
#include "services/providers/storage/SlotTable.h"

namespace providers {
namespace {

using namespace obcontract; // the contract's tables name its types bare

constexpr std::size_t kDownloadListSlotCount = 2;
constexpr std::size_t kUploadListSlotCount = 4;

} // namespace

OwnDownloadList::OwnDownloadList() : DownloadList{Table()} {}

void* const* OwnDownloadList::Table() {
    using Own = OwnDownloadList;
    static const auto filled = [] {
        auto table = UnlistedSlots<kDownloadListSlotCount>();
        OB_DOWNLOAD_LIST_SLOTS(PROVIDERS_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

Bool OwnDownloadList::GetItem(std::uint32_t index, CloudItem* item) {
    if (!item || index >= items.size()) return false;
    *item = items[index];
    return true;
}

void OwnDownloadList::AddItem(const CloudItem* item) {
    if (item && IsSound(*item)) items.push_back(*item);
}

OwnUploadList::OwnUploadList(std::wstring ofAccount)
    : UploadList{Table()}, accountKey(std::move(ofAccount)) {}

void* const* OwnUploadList::Table() {
    using Own = OwnUploadList;
    static const auto filled = [] {
        auto table = UnlistedSlots<kUploadListSlotCount>();
        OB_UPLOAD_LIST_SLOTS(PROVIDERS_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

void OwnUploadList::AddFile(const wchar_t* localPath, const wchar_t* cloudName, std::uint64_t,
                            std::uint64_t, const wchar_t* targetFolder) {
    if (!localPath || !*localPath || !cloudName || !targetFolder) return;
    const auto name = TextIn(cloudName, std::size(CloudItem{}.name));
    if (!name || name->empty()) return;
    entries.push_back({{localPath, *name, targetFolder}});
}

Bool OwnUploadList::GetItem(std::uint32_t index, CloudItem* item) {
    if (!item) return false;
    for (const Entry& entry : entries) {
        if (!entry.stored || index-- > 0) continue;
        *item = *entry.stored;
        return true;
    }
    return false;
}

void OwnUploadList::ResetList(std::uint32_t) { entries.clear(); }

} // namespace providers

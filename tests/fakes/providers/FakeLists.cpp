#include "tests/fakes/providers/FakeLists.h"

#include <algorithm>
#include <iterator>

#include "tests/fakes/providers/Script.h"
#include "tests/fakes/providers/SlotTable.h"

namespace fakes {
namespace {

constexpr std::size_t kListSlotCount = 16;

using namespace obcontract; // the contract's tables name its types bare

Bool GiveItem(const std::vector<CloudItem>& items, std::uint32_t index, CloudItem* item) {
    if (index >= items.size()) return 0;
    if (index == 0 || ScriptedCount(L"GetItem.nameOnly", 0) == 0) {
        *item = items[index];
    } else {
        std::ranges::copy(items[index].name, item->name);
    }
    return 1;
}

namespace download {

Bool GetItem(obcontract::DownloadList* list, std::uint32_t index, CloudItem* item) {
    Record(L"GetItem", list, index);
    return GiveItem(static_cast<FakeDownloadList*>(list)->items, index, item);
}

void AddItem(obcontract::DownloadList* list, const CloudItem* item) {
    Record(L"AddItem", list, item);
    static_cast<FakeDownloadList*>(list)->items.push_back(*item);
}

void* const* Table() {
    static const auto filled = [] {
        auto table = UnexpectedSlots<kListSlotCount>();
        OB_DOWNLOAD_LIST_SLOTS(FAKE_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

} // namespace download

namespace upload {

void AddFile(obcontract::UploadList* list, const wchar_t* localPath, const wchar_t* cloudName,
             std::uint64_t zero, std::uint64_t alsoZero, const wchar_t* targetFolder) {
    Record(L"AddFile", list, localPath, cloudName, zero, alsoZero, targetFolder);
    auto* fake = static_cast<FakeUploadList*>(list);
    fake->items.push_back(MakeItem(fake->account, cloudName, {}));
}

Bool GetItem(obcontract::UploadList* list, std::uint32_t index, CloudItem* item) {
    Record(L"GetItem", list, index);
    return GiveItem(static_cast<FakeUploadList*>(list)->items, index, item);
}

void ResetList(obcontract::UploadList* list, std::uint32_t zero) {
    Record(L"ResetList", list, zero);
    static_cast<FakeUploadList*>(list)->items.clear();
}

void* const* Table() {
    static const auto filled = [] {
        auto table = UnexpectedSlots<kListSlotCount>();
        OB_UPLOAD_LIST_SLOTS(FAKE_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

} // namespace upload
} // namespace

FakeDownloadList::FakeDownloadList() : DownloadList{download::Table()} {}

FakeUploadList::FakeUploadList(std::uint32_t provider, const wchar_t* accountKey)
    : UploadList{upload::Table()} {
    account.providerId = provider;
    FillText(account.accountKey, std::size(account.accountKey), accountKey ? accountKey : L"");
}

CloudItem MakeItem(const obcontract::ProviderProfile& account, const std::wstring& name,
                   const std::wstring& link) {
    CloudItem item{};
    item.profile = account;
    FillText(item.name, std::size(item.name), name);
    FillText(item.link, std::size(item.link), link);
    return item;
}

} // namespace fakes

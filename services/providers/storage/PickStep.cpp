#include "services/providers/storage/PickStep.h"

#include <utility>
#include <vector>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// A picker that throws has failed without a sentence of its own.
PickResult Pick(StorageProvider& provider, const std::wstring& preferredAccount, HWND owner) {
    return ObLib::GuardedElse([&] { return provider.Pick(preferredAccount, owner); },
                              [] {
                                  return PickResult{{}, OwnText(OB_TEXT_PICK_FAILED)};
                              });
}

// The records of the files. Empty when not all of them fit: no link is ever cut.
std::vector<obcontract::CloudItem> ItemsOf(const StorageProvider& provider,
                                           const std::vector<PickedFile>& files) {
    std::vector<obcontract::CloudItem> items;
    if (!FitsLinkText(files, provider.DisplayName())) return {};
    for (const PickedFile& file : files) {
        const auto item = ItemOf(ProfileOf(provider.Id(), file.account), NameWithLink(file),
                                 EscapedLink(file.link));
        if (!item) return {};
        items.push_back(*item);
    }
    return items;
}

} // namespace

bool PickFiles(StorageProvider& provider, const std::wstring& preferredAccount,
               OwnDownloadList& list, HWND owner) {
    list.items.clear();
    list.failure.clear();
    PickResult result = Pick(provider, preferredAccount, owner);
    if (result.files.empty()) {
        list.failure = std::move(result.sentence);
        return false;
    }
    const bool areMade = ObLib::RanGuarded([&] { list.items = ItemsOf(provider, result.files); });
    if (list.items.empty()) {
        list.failure = OwnText(areMade ? OB_TEXT_PICK_TOO_MANY : OB_TEXT_PICK_FAILED);
    }
    return !list.items.empty();
}

} // namespace providers

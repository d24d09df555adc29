#include "OBCore/cloud/ShareText.h"

#include <string_view>
#include <utility>

#include "OBCore/modules/ForeignTexts.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"

using obcontract::CloudItem;
using obcontract::DownloadList;
using obcore::slots::OnDownloadList;

namespace obcore {
namespace {

constexpr int kTextCapacity = 4096; // wide characters
constexpr wchar_t kUploadMark[] = L"0";
constexpr wchar_t kPopupBegin[] = L"#POPUP_MESSAGE_BEGIN#";
constexpr wchar_t kPopupEnd[] = L"#POPUP_MESSAGE_END#";

std::wstring Filled(TextId id, std::wstring_view placeholder, std::wstring_view value) {
    std::wstring text = LoadText(id, kTextCapacity);
    FillIn(text, placeholder, value);
    return text;
}

// The days that the item's group names: negative when it was not put on the schedule.
std::int32_t ScheduledDays(const CloudItem& item, std::int32_t days) {
    if (days < 0) return days;
    return ProviderManager().AddFileToDeletionSchedule(&item, days) ? days : -1;
}

} // namespace

void AppendShareTail(std::wstring& text, const std::wstring& displayName, std::int32_t days) {
    text += L'|' + Filled(TextId::ShareProvider, L"%s", displayName);
    for (const TextId id : {TextId::ShareOpen, TextId::ShareTrouble, TextId::SharePassword}) {
        text += L'|' + LoadText(id, kTextCapacity);
    }
    text += L'|';
    if (days >= 0) text += Filled(TextId::ShareExpiry, L"%d", std::to_wstring(days));
    text += LoadText(TextId::ShareClosing, kTextCapacity);
    text += std::wstring(L"|") + kPopupBegin + LoadText(TextId::SharePopup, kTextCapacity);
    text += kPopupEnd;
}

void FormatShareText(DownloadList* list, const std::wstring& displayName, std::int32_t days,
                     std::wstring& linkText) {
    std::wstring text = kUploadMark;
    ForEachItem<OnDownloadList::GetItem>(list, [&](const CloudItem& item) {
        const std::int32_t itemDays = ScheduledDays(item, days);
        text += L"| |" + TextIn(item.name) + L'|' + TextIn(item.link);
        AppendShareTail(text, displayName, itemDays);
    });
    linkText = std::move(text);
}

} // namespace obcore

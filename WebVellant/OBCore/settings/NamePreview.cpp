#include "OBCore/settings/NamePreview.h"

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/options/AttachmentNaming.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/DialogItems.h"

namespace obcore {
namespace {

using obcontract::kCompressionZipx;
using obcontract::kExtensionRules;
using obcontract::kFileNameRules;

bool IsAccepted(const std::wstring& text, std::uint32_t rules) {
    return ArchiveService().ValidateFilespecW(text.c_str(), rules) == 0;
}

struct Ending {
    std::wstring text; // with its point
    bool isGood = true;
};

Ending ChosenEnding(HWND window) {
    if (IsChecked(window, OB_ATTACHMENT_USE_EXTENSION)) {
        const std::wstring typed = ItemText(window, OB_ATTACHMENT_EXTENSION);
        return {L"." + TrimWhitespaceAndDots(typed, kWhitespaceAndDots), IsGoodExtension(typed)};
    }
    if (IsChecked(window, OB_ATTACHMENT_ZIPX)) return {L".zipx"};
    if (IsChecked(window, OB_ATTACHMENT_ZIP)) return {L".zip"};
    return {};
}

std::wstring StoredEnding(const OBOptions& options) {
    if (options.UseAltExt) return L"." + options.AltExt;
    return options.CompressionMethod < kCompressionZipx ? L".zip" : L".zipx";
}

} // namespace

std::wstring TrimWhitespaceAndDots(std::wstring_view text, std::wstring_view set) {
    const auto first = text.find_first_not_of(set);
    if (first == std::wstring_view::npos) return {};
    return std::wstring(text.substr(first, text.find_last_not_of(set) - first + 1));
}

bool IsGoodZipName(const std::wstring& name) { return IsAccepted(name, kFileNameRules); }

bool IsGoodExtension(const std::wstring& extension) {
    return IsAccepted(extension, kFileNameRules) && IsAccepted(extension, kExtensionRules);
}

NameAppendKind ChosenAppend(HWND window) {
    const LRESULT row = SendDlgItemMessageW(window, OB_ATTACHMENT_APPEND, CB_GETCURSEL, 0, 0);
    return static_cast<NameAppendKind>(row);
}

void UpdateNamePreview(HWND window) {
    const std::wstring name = ItemText(window, OB_ATTACHMENT_ZIP_NAME);
    const bool isGoodName = IsGoodZipName(name);
    const Ending ending = ChosenEnding(window);
    const std::wstring preview = isGoodName && ending.isGood
                                     ? name + MakeNameToken(ChosenAppend(window)) + ending.text
                                     : LoadText(TextId::PreviewNotValid);
    SetDlgItemTextW(window, OB_ATTACHMENT_PREVIEW, preview.c_str());
}

void ShowStoredName(HWND window, const OBOptions& options) {
    const std::wstring preview =
        options.DefaultZipName + MakeNameToken(options.NameAppend) + StoredEnding(options);
    SetDlgItemTextW(window, OB_ATTACHMENT_PREVIEW, preview.c_str());
}

} // namespace obcore

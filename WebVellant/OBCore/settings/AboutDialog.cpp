#include "OBCore/settings/AboutDialog.h"

#include <array>

#include "OBCore/modules/ProductIcon.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/DialogItems.h"
#include "OBCore/settings/LibraryVersion.h"
#include "OBCore/settings/PlainDialog.h"

namespace obcore {
namespace {

constexpr int kClosed = 1; // result of the dialog
constexpr wchar_t kHelpTopic[] = L"Help About Topic";
constexpr DWORD kTextCapacity = 2048;
constexpr std::uint32_t kKeyIsUsable = 1; // of PublicKeyResult

class AboutDialog : public PlainDialog {
public:
    explicit AboutDialog(const OBOptions& options) : options_(options) {}

private:
    void OnOpen(HWND window) override;
    void OnCommand(HWND window, int id) override;

    const OBOptions& options_;
    ProductIcon icon_;
};

void AboutDialog::OnOpen(HWND window) {
    const bool isRecoverable =
        options_.HasEntCertificate && options_.PublicKeyResult == kKeyIsUsable;
    icon_.Set(window, isRecoverable ? OB_RECOVERY_ICON : OB_PRODUCT_ICON, OB_PRODUCT_ICON);
    const std::wstring text = AboutText(ItemText(window, OB_ABOUT_VERSION));
    SetDlgItemTextW(window, OB_ABOUT_VERSION, text.c_str());
}

void AboutDialog::OnCommand(HWND window, int id) {
    if (id == OB_ABOUT_HELP) ArchiveService().WebHelpW(window, kHelpTopic, kHelpTopic);
    if (id == IDOK) EndDialog(window, kClosed);
}

// The system takes an argument for each place of a message, and %99 is the last one. What isn't
// ours is an empty text, so that a text that a translator got wrong costs no more than its value.
class Arguments {
public:
    Arguments() { values_.fill(reinterpret_cast<DWORD_PTR>(L"")); }
    void Set(std::size_t place, const std::wstring& text) {
        values_[place - 1] = reinterpret_cast<DWORD_PTR>(text.c_str());
    }
    va_list* AsArray() { return reinterpret_cast<va_list*>(values_.data()); }

private:
    std::array<DWORD_PTR, 99> values_;
};

} // namespace

std::wstring AboutText(const std::wstring& messageTemplate) {
    const LibraryVersion version = ReadLibraryVersion();
    const std::wstring about = LoadText(TextId::AboutCopyright);
    Arguments arguments;
    arguments.Set(1, version.file);
    arguments.Set(2, version.product);
    arguments.Set(3, about);
    std::wstring text(kTextCapacity, L'\0');
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY,
                                        messageTemplate.c_str(), 0, 0, text.data(), kTextCapacity,
                                        arguments.AsArray());
    if (length == 0) return messageTemplate;
    text.resize(length);
    return text;
}

INT_PTR ShowAboutDialog(HWND owner, const OBOptions& options) {
    return AboutDialog(options).Show(OB_ABOUT, owner);
}

} // namespace obcore

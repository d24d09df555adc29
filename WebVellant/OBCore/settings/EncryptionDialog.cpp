#include "OBCore/settings/EncryptionDialog.h"

#include <algorithm>
#include <iterator>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/settings/DialogItems.h"
#include "OBCore/settings/EncryptionDialogIds.h"

namespace obcore {
namespace {

using obcontract::kEncryptionMethodAes128;
using obcontract::kEncryptionMethodAes256;

constexpr int kSaved = 1; // result of DoModal

struct Method {
    int radio;
    std::uint16_t bit; // of AllowedEncryptMethods, and the value of EncryptionMethod
};

constexpr Method kMethods[] = {
    {OB_ENCRYPTION_METHOD_4, kEncryptionMethodAes128},
    {OB_ENCRYPTION_METHOD_8, kEncryptionMethodAes256},
};

// A disabled one was taken away by policy.
constexpr int kRadios[] = {OB_ENCRYPTION_METHOD_4, OB_ENCRYPTION_METHOD_8};

bool IsAllowed(const Method& method, const OBOptions& options) {
    return (options.AllowedEncryptMethods & method.bit) != 0;
}

void ShowStoredMethod(HWND window, const OBOptions& options) {
    for (const Method& method : kMethods) {
        SetChecked(window, method.radio, options.EncryptionMethod == method.bit);
    }
}

// 1 and 2 of the low 16 bits: the computer is set to approved methods.
bool IsFips() {
    const WORD setting = LOWORD(ArchiveService().GetOmbrixFIPSSetting());
    return setting == 1 || setting == 2;
}

void ShowMethods(HWND window, const OBOptions& options) {
    ShowStoredMethod(window, options);
    const TextId strong = IsFips() ? TextId::Method8Fips : TextId::Method8;
    SetDlgItemTextW(window, OB_ENCRYPTION_METHOD_8, LoadText(strong).c_str());
    for (const Method& method : kMethods) {
        SetEnabled(window, method.radio, IsAllowed(method, options));
    }
}

// Without a checked radio it is the first method, which the save repairs if policy forbids it.
std::uint32_t ChosenMethod(HWND window) {
    if (IsChecked(window, OB_ENCRYPTION_METHOD_4)) return kEncryptionMethodAes128;
    return IsChecked(window, OB_ENCRYPTION_METHOD_8) ? kEncryptionMethodAes256
                                                     : kEncryptionMethodAes128;
}

// The radio of a forbidden method is disabled; this is for a click that arrives all the same.
bool RefuseForbidden(HWND window, const Method& method, const OBOptions& options) {
    if (IsAllowed(method, options) || !IsChecked(window, method.radio)) return false;
    ShowStoredMethod(window, options);
    ShowStringBox(window, TextId::EncryptionNotAllowed);
    return true;
}

} // namespace

OBEncryptionDialogImp::OBEncryptionDialogImp(HWND parent, OBOptions& options)
    : ObXFlatDlg(OB_ENCRYPTION, parent, 0, true), options_(&options) {}

bool OBEncryptionDialogImp::OnInitDialog() {
    ObXFlatDlg::OnInitDialog();
    headline_.SetBoldFont(window, OB_ENCRYPTION_HEADLINE);
    ShowMethods(window, *options_);
    hints_.Show(window, kRadios);
    return true;
}

bool OBEncryptionDialogImp::OnOK() {
    options_->EncryptionMethod = ChosenMethod(window);
    options_->SaveEncryptionMethod();
    EndDialog(window, kSaved);
    window = nullptr; // controls still notify while they are destroyed
    return false;
}

bool OBEncryptionDialogImp::OnCommand(WPARAM wParam, LPARAM) {
    const auto* const method = std::ranges::find(kMethods, LOWORD(wParam), &Method::radio);
    if (method == std::end(kMethods)) return true;
    return RefuseForbidden(window, *method, *options_);
}

} // namespace obcore

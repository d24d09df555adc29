#include "OBCore/picker/CloudButtonControl.h"

#include <commctrl.h>

#include <string>

#include "OBCore/cloud/OpenPickerProvider.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/OwnModule.h"
#include "OBCore/modules/ResourceModule.h"

namespace obcore {
namespace {

constexpr char kSource[] = "OBCore\\CloudButtonHook";
constexpr int kTextCapacity = 126; // wide characters with the NUL
constexpr int kAddedWidth = 10;    // pixels beyond what the text needs
constexpr DWORD kStyle =
    WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | BS_CENTER | BS_VCENTER;
static_assert(kStyle == 0x54010F00);

RECT PlaceOnScreen(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

void FindControls(CloudButtonHook& record) {
    record.ok_button_ = FindWindowExW(record.dialog, nullptr, L"Button", nullptr);
    record.combobox_ = FindWindowExW(record.dialog, nullptr, L"ComboBoxEx32", nullptr);
    Check(record.ok_button_ != nullptr, "ok_button_ != NULL", kSource, 187);
    Check(record.combobox_ != nullptr, "combobox_ != NULL", kSource, 188);
}

HWND CreateButton(HWND dialog) {
    BindResourceModule();
    const std::wstring text = LoadText(TextId::CloudButton, kTextCapacity);
    return CreateWindowExW(0, L"Button", text.c_str(), kStyle, 0, 0, 0, 0, dialog,
                           reinterpret_cast<HMENU>(ULONG_PTR{kCloudButtonId}), OwnModule(),
                           nullptr);
}

void GiveFont(HWND button, HWND example) {
    const LRESULT font = SendMessageW(example, WM_GETFONT, 0, 0);
    SendMessageW(button, WM_SETFONT, static_cast<WPARAM>(font), TRUE);
}

} // namespace

void AddCloudButton(CloudButtonHook& record, HWND dialog) {
    record.dialog = dialog;
    FindControls(record);
    record.button = CreateButton(dialog);
    GiveFont(record.button, record.ok_button_);
    if (!ChooseOpenPickerProvider(record.providerManager)) EnableWindow(record.button, FALSE);
    LayOutCloudButton(record);
}

void LayOutCloudButton(const CloudButtonHook& record) {
    const RECT ok = PlaceOnScreen(record.ok_button_);
    const RECT box = PlaceOnScreen(record.combobox_);
    SIZE ideal{};
    SendMessageW(record.button, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal));
    RECT target{box.left, ok.top, box.left + ideal.cx + kAddedWidth, ok.bottom};
    MapWindowPoints(HWND_DESKTOP, record.dialog, reinterpret_cast<POINT*>(&target), 2);
    const HWND fileTypes = FindWindowExW(record.dialog, record.combobox_, L"ComboBox", nullptr);
    SetWindowPos(record.button, fileTypes, target.left, target.top, target.right - target.left,
                 target.bottom - target.top, SWP_NOOWNERZORDER);
}

std::int32_t MinimumWidthOfDialog(const CloudButtonHook& record) {
    const RECT dialog = PlaceOnScreen(record.dialog);
    return PlaceOnScreen(record.button).right - PlaceOnScreen(record.combobox_).right +
           (dialog.right - dialog.left);
}

} // namespace obcore

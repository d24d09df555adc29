#include "OBCore/picker/CloudButton.h"

#include <commctrl.h>

#include <algorithm>

#include "OBCore/cloud/PickFromCloud.h"
#include "OBCore/options/OBOptions.h"
#include "OBCore/picker/CloudButtonControl.h"
#include "ObLib/Src/Win32/Guarded.h"

namespace obcore {
namespace {

constexpr WORD kDialogAtom = 32770; // the system's class of standard dialogs

CloudButtonHook* nextRecord = nullptr;

// A position and size that are the dialog's own make the system ask for the limits of the size, and
// so enlarge a dialog that is below its new minimum.
void TakeMinimum(HWND dialog) {
    RECT place{};
    GetWindowRect(dialog, &place);
    SetWindowPos(dialog, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, 0);
}

void Open(CloudButtonHook& record, HWND dialog) {
    AddCloudButton(record, dialog);
    record.minimumWidth = MinimumWidthOfDialog(record);
    TakeMinimum(dialog);
}

void LimitSize(const CloudButtonHook& record, MINMAXINFO& limits) {
    LONG& smallest = limits.ptMinTrackSize.x;
    smallest = std::max<LONG>(smallest, record.minimumWidth);
    smallest = std::min(smallest, limits.ptMaxTrackSize.x);
}

// A dialog that ends with 0 isn't confirmed: Show returns a failure, and the driver takes the link.
// Nothing reads the options; loading them leaves the user's keys as each load of the options does.
void Pick(CloudButtonHook* record, HWND dialog) {
    OBOptions options;
    options.Load();
    if (record && PickFromCloud(*record, dialog)) EndDialog(dialog, 0);
}

void AfterDefault(CloudButtonHook& record, HWND dialog, UINT message, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        Open(record, dialog);
        break;
    case WM_SIZE: // before WM_INITDIALOG there is no button
        if (record.button) LayOutCloudButton(record);
        break;
    case WM_GETMINMAXINFO:
        LimitSize(record, *reinterpret_cast<MINMAXINFO*>(lParam));
        break;
    default:
        break;
    }
}

LRESULT CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam,
                                 UINT_PTR id, DWORD_PTR data) noexcept {
    auto* const record = reinterpret_cast<CloudButtonHook*>(data);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(dialog, &DialogProcedure, id);
    if (message == WM_COMMAND && LOWORD(wParam) == kCloudButtonId) {
        ObLib::RanGuarded([&] { Pick(record, dialog); });
    }
    const LRESULT result = DefSubclassProc(dialog, message, wParam, lParam);
    if (record) ObLib::RanGuarded([&] { AfterDefault(*record, dialog, message, lParam); });
    return result;
}

bool IsStandardDialog(HWND window) {
    return LOWORD(GetClassLongPtrW(window, GCW_ATOM)) == kDialogAtom;
}

void OnCreated(HWND window) {
    CloudButtonHook* const record = nextRecord;
    if (!record || !IsStandardDialog(window)) return;
    SetWindowSubclass(window, &DialogProcedure, 0, reinterpret_cast<DWORD_PTR>(record));
    nextRecord = nullptr;
    record->hook.Reset();
}

} // namespace

void SetCloudButtonRecord(CloudButtonHook* record) noexcept { nextRecord = record; }

LRESULT CALLBACK CloudButtonHookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_CREATEWND) {
        ObLib::RanGuarded([wParam] { OnCreated(reinterpret_cast<HWND>(wParam)); });
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace obcore

// Operates the picker of files on servers from a second thread, as a user does.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "services/providers/webdav/DavPickerIds.h"
#include "tests/support/WindowKit.h"

namespace obtest {

class PickerUser {
public:
    explicit PickerUser(HWND dialog) : dialog_(dialog) {}

    HWND Dialog() const { return dialog_; }
    HWND Control(int id) const { return GetDlgItem(dialog_, id); }
    HWND List() const { return Control(OB_DAVPICK_LIST); }

    int Count() const { return static_cast<int>(SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0)); }
    std::wstring Cell(int row, int column = 0) const {
        wchar_t text[300] = L"";
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = 300;
        SendMessageW(List(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&item));
        return text;
    }
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (int row = 0; row < Count(); ++row) names.push_back(Cell(row));
        return names;
    }
    // Waits until the list has these names; false after a limit.
    bool Sees(const std::vector<std::wstring>& names) const {
        return WaitUntil([&] { return Names() == names; });
    }
    // The text in the place of rows; empty while there is none.
    std::wstring Message() const {
        return IsWindowVisible(Control(OB_DAVPICK_MESSAGE)) ? ItemText(dialog_, OB_DAVPICK_MESSAGE)
                                                            : L"";
    }
    bool Reads(const std::wstring& message) const {
        return WaitUntil([&] { return Message() == message; });
    }
    std::wstring Status() const { return ItemText(dialog_, OB_DAVPICK_STATUS); }
    std::wstring Path() const { return ItemText(dialog_, OB_DAVPICK_PATH); }

    void Select(int row, bool isSelected = true) const {
        LVITEMW item{};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        item.state = isSelected ? LVIS_SELECTED | LVIS_FOCUSED : 0;
        SendMessageW(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&item));
    }
    bool IsSelected(int row) const {
        return SendMessageW(List(), LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
    }
    int Focused() const {
        return static_cast<int>(
            SendMessageW(List(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    }
    // The first click selects the row alone.
    void DoubleClick(int row) const {
        Select(-1, false);
        Select(row);
        RECT place{LVIR_LABEL, 0, 0, 0};
        SendMessageW(List(), LVM_GETITEMRECT, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&place));
        PostMessageW(List(), WM_LBUTTONDBLCLK, MK_LBUTTON,
                     MAKELPARAM(place.left + 2, (place.top + place.bottom) / 2));
    }
    void Press(int command) const { PressCommand(dialog_, command); }
    void PressKey(WPARAM key) const { PostMessageW(Focus(), WM_KEYDOWN, key, 1); }
    // On the keyboard itself, which works for the window in front.
    void PressWithCtrl(WORD key) const {
        SetForegroundWindow(dialog_);
        WaitUntil([this] { return GetForegroundWindow() == dialog_; });
        INPUT keys[4]{};
        for (INPUT& input : keys) input.type = INPUT_KEYBOARD;
        keys[0].ki.wVk = keys[3].ki.wVk = VK_CONTROL;
        keys[1].ki.wVk = keys[2].ki.wVk = key;
        keys[2].ki.dwFlags = keys[3].ki.dwFlags = KEYEVENTF_KEYUP;
        SendInput(4, keys, sizeof keys[0]);
    }
    void Type(wchar_t letter) const { PostMessageW(List(), WM_CHAR, letter, 1); }
    void ChooseAccount(int index) const {
        SendMessageW(Control(OB_DAVPICK_ACCOUNT), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        SendMessageW(dialog_, WM_COMMAND, MAKEWPARAM(OB_DAVPICK_ACCOUNT, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(Control(OB_DAVPICK_ACCOUNT)));
    }
    HWND Focus() const {
        GUITHREADINFO info{sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(dialog_, nullptr), &info);
        return info.hwndFocus;
    }
    bool HasFocus(int id) const {
        return WaitUntil([&] { return Focus() == Control(id); });
    }
    bool IsEnabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }

private:
    HWND dialog_;
};

} // namespace obtest

// What the tests of combo boxes share: a stock combo box with three texts, and places.
#pragma once

#include "ObLibX/src/controls/ObCustCombo.h"

#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace obtest {

// The objects outlive their windows, as in a dialog.
class ComboTest : public BarTest {
protected:
    HWND Make(DWORD kind) {
        window_ =
            Child(L"ComboBox", kind | WS_VSCROLL | CBS_HASSTRINGS | CBS_AUTOHSCROLL | WS_TABSTOP,
                  {20, 20, 180, 220});
        for (const wchar_t* const text : {L"First", L"Second", L"Third"}) Add(text);
        SendMessageW(window_, CB_SETCURSEL, 1, 0);
        return window_;
    }
    void Add(const wchar_t* text) const {
        SendMessageW(window_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    COMBOBOXINFO Parts() const {
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        GetComboBoxInfo(window_, &info);
        return info;
    }
    ObLibX::PixelRect ListOnScreen() const { return OnScreen(Parts().hwndList); }
    static ObLibX::PixelRect OnScreen(HWND window) {
        RECT rect{};
        GetWindowRect(window, &rect);
        return ObLibX::AsPixels(rect);
    }
    HWND window_ = nullptr;
};

} // namespace obtest

// What the tests of texts and edits share: flat dialogs dressed by the real table, the answer to
// the one question about high contrast, and pixels.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/controls/EditTestIds.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace fieldtest {

inline bool& isContrast = obtest::isContrastOn;

inline std::wstring TextOfWindow(HWND window) {
    wchar_t text[200] = {};
    GetWindowTextW(window, text, 200);
    return text;
}

// The colour of a brush; CLR_INVALID for none.
inline COLORREF ColorOfBrush(HBRUSH brush) {
    LOGBRUSH described{};
    return GetObjectW(brush, sizeof described, &described) != 0 ? described.lbColor : CLR_INVALID;
}

// Waiting for nothing: what is invalid is painted at once.
inline void PaintNow(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

// A pixel of what a window's client area shows.
inline COLORREF PixelOf(HWND window, int x, int y) {
    const HDC dc = GetDC(window);
    const COLORREF color = GetPixel(dc, x, y);
    ReleaseDC(window, dc);
    return color;
}

} // namespace fieldtest

// Flat dialogs of the test program, with its description.
class FieldsTest : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(patch_.Ok());
        fieldtest::isContrast = false;
        UseDescription();
        ObLibX::UseFlatControls();
    }
    void TearDown() override {
        dialog_.reset();
        fieldtest::isContrast = false;
        DialogTest::TearDown();
    }

    void Open(std::int32_t dialogTemplate, bool isShown = true) {
        dialog_ = std::make_unique<ObLibX::ObXFlatDlg>(dialogTemplate, nullptr, 0, false);
        dialog_->Create(nullptr);
        if (!isShown) return;
        ShowWindow(dialog_->window, SW_SHOW);
        UpdateWindow(dialog_->window);
    }
    HWND Item(std::int32_t id) const { return dialog_->GetItem(id, true); }
    ObLibX::PixelRect RectOf(std::int32_t id) const { return ObLibX::RectInParent(Item(id)); }
    // The rectangle that a template has, in pixels.
    ObLibX::PixelRect FromUnits(int left, int top, int width, int height) const {
        RECT rect{left, top, width, height};
        MapDialogRect(dialog_->window, &rect);
        return {rect.left, rect.top, rect.left + rect.right, rect.top + rect.bottom};
    }
    template <class Class>
    Class& Object(std::int32_t id) const {
        return dynamic_cast<Class&>(*dialog_->GetControl(id));
    }
    template <class Class>
    bool Is(std::int32_t id) const {
        return dynamic_cast<Class*>(dialog_->GetControl(id)) != nullptr;
    }

    std::unique_ptr<ObLibX::ObXFlatDlg> dialog_;

private:
    obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch_{
        "user32.dll", "SystemParametersInfoW", &obtest::ParametersWithContrast};
};

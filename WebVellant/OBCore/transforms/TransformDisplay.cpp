#include "OBCore/transforms/TransformDisplay.h"

#include <commctrl.h>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/transforms/FitPathText.h"

namespace obcore {
namespace {

// The drawing context of a control with the control's own font in it.
class ControlText {
public:
    explicit ControlText(HWND control)
        : control_(control), context_(GetDC(control)),
          before_(SelectObject(
              context_, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)))) {}
    ControlText(const ControlText&) = delete;
    ControlText& operator=(const ControlText&) = delete;
    ~ControlText() {
        SelectObject(context_, before_);
        ReleaseDC(control_, context_);
    }

    int WidthOf(const std::wstring& text) const {
        SIZE size{};
        GetTextExtentPoint32W(context_, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }

private:
    HWND control_;
    HDC context_;
    HGDIOBJ before_;
};

int WindowWidth(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place.right - place.left;
}

std::wstring StatusText(HWND control, const std::wstring& fileName) {
    const ControlText text(control);
    return FitPathText([&text](const std::wstring& part) { return text.WidthOf(part); },
                       WindowWidth(control), LoadText(TextId::TransformProgress), fileName);
}

void SetMarqueeStyle(HWND bar, bool on) {
    const LONG_PTR style = GetWindowLongPtrW(bar, GWL_STYLE);
    SetWindowLongPtrW(bar, GWL_STYLE, on ? style | PBS_MARQUEE : style & ~LONG_PTR{PBS_MARQUEE});
    SendMessageW(bar, PBM_SETMARQUEE, on, 0);
}

} // namespace

TransformDisplay::TransformDisplay(HWND dialog) noexcept
    : dialog_(dialog), bar_(GetDlgItem(dialog, OB_TRANSFORM_BAR)) {}

void TransformDisplay::StartMarquee() const { SetMarqueeStyle(bar_, true); }

void TransformDisplay::ReturnToMarquee() const {
    if (!(GetWindowLongPtrW(bar_, GWL_STYLE) & PBS_MARQUEE)) StartMarquee();
}

void TransformDisplay::LeaveMarquee(std::size_t files) const {
    SetMarqueeStyle(bar_, false);
    SendMessageW(bar_, PBM_SETRANGE32, 0, static_cast<LPARAM>(files));
}

void TransformDisplay::ShowDone(std::size_t files) const {
    SendMessageW(bar_, PBM_SETPOS, files, 0);
}

void TransformDisplay::ShowFile(const std::wstring& fileName) const {
    const HWND control = GetDlgItem(dialog_, OB_TRANSFORM_STATUS);
    if (control) SetWindowTextW(control, StatusText(control, fileName).c_str());
}

} // namespace obcore

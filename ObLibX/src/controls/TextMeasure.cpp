#include "ObLibX/src/controls/TextMeasure.h"

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\TextMeasure.cpp";

} // namespace

TextSize MeasureTextIn(HFONT font, const ObLib::ObString& text, std::int32_t width, UINT flags) {
    ObAssert(font != nullptr);
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), font);
    RECT needed{0, 0, width, 0};
    DrawTextW(dc.Get(), text.CStr(), -1, &needed, flags | DT_CALCRECT);
    SelectObject(dc.Get(), old);
    return {needed.right - needed.left, needed.bottom - needed.top};
}

} // namespace ObLibX

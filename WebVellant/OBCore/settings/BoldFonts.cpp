#include "OBCore/settings/BoldFonts.h"

#include <utility>

namespace obcore {

HFONT BoldFonts::MakeBold(HWND control) {
    LOGFONTW face{};
    const auto own = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
    if (!own || !GetObjectW(own, sizeof face, &face)) return nullptr;
    face.lfWeight = FW_BOLD;
    ObLib::UniqueFont bold(CreateFontIndirectW(&face));
    if (!bold) return nullptr;
    fonts_.push_back(std::move(bold));
    return fonts_.back().Get();
}

void BoldFonts::SetBoldFont(HWND window, int id) {
    const HWND control = GetDlgItem(window, id);
    const HFONT bold = control ? MakeBold(control) : nullptr;
    if (bold) SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(bold), TRUE);
}

} // namespace obcore

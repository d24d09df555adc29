#include "ObLibX/src/dialog/DescribedControls.h"

#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Palette.h"

namespace ObLibX {

bool ReadDialogDescription(std::int32_t dialogId, std::vector<ControlDescription>& controls) {
    LoadDialogDefaults();
    DescriptionContext context;
    context.font.name = GetBaseFont(context.font.size);
    context.accentColor = GetPaletteColor(kPaletteAccent);
    return ReadDialogControls(ProcessDialogSettings().description, dialogId, context, controls);
}

} // namespace ObLibX

#include "services/providers/ui/SettingsDialogs.h"

#include <algorithm>
#include <iterator>

#include "services/providers/ui/PdfDialog.h"
#include "services/providers/ui/PersonalDataDialog.h"
#include "services/providers/ui/PhotoDialog.h"
#include "services/providers/ui/ResizeDialog.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/ui/WatermarkDialog.h"

namespace providers {
namespace {

using obcontract::TransformId;

template <class Settings>
bool Change(const TransformSettings& stored, HWND owner) {
    Settings settings = Settings::Load(stored);
    if (!AskForSettings(owner, settings)) return false;
    if (settings.Save(stored)) return true;
    ShowSentence(owner, OwnText(OB_TEXT_SETTINGS_NOT_SAVED));
    return false;
}

constexpr SettingsRow kRows[] = {
    {TransformId::ConvertPdf, &PdfSettings::AreStored, &Change<PdfSettings>},
    {TransformId::ConvertPhotos, &PhotoSettings::AreStored, &Change<PhotoSettings>},
    {TransformId::ResizeImages, &ResizeSettings::AreStored, &Change<ResizeSettings>},
    {TransformId::Watermark, &WatermarkSettings::AreStored, &Change<WatermarkSettings>},
    {TransformId::RemoveInfo, &PersonalDataSettings::AreStored, &Change<PersonalDataSettings>},
};

} // namespace

const SettingsRow* SettingsOf(TransformId id) noexcept {
    const auto* const row = std::ranges::find(kRows, id, &SettingsRow::id);
    return row == std::end(kRows) ? nullptr : row;
}

} // namespace providers

#include "services/providers/settings/PersonalDataSettings.h"

namespace providers {
namespace {

constexpr auto kId = obcontract::TransformId::RemoveInfo;
constexpr wchar_t kShowsReceipt[] = L"ShowReceipt";
constexpr wchar_t kAsksAboutRest[] = L"AskAboutOtherFiles";

} // namespace

bool PersonalDataSettings::AreStored(const TransformSettings& stored) {
    return SwitchOf(stored.Read(kId, kShowsReceipt)).has_value();
}

PersonalDataSettings PersonalDataSettings::Load(const TransformSettings& stored) {
    PersonalDataSettings settings;
    settings.showsReceipt =
        SwitchOf(stored.Read(kId, kShowsReceipt)).value_or(settings.showsReceipt);
    settings.asksAboutRest =
        SwitchOf(stored.Read(kId, kAsksAboutRest)).value_or(settings.asksAboutRest);
    return settings;
}

// The value that AreStored looks for is written last.
bool PersonalDataSettings::Save(const TransformSettings& stored) const {
    const SettingValue values[] = {
        {kAsksAboutRest, TextOfSwitch(asksAboutRest)},
        {kShowsReceipt, TextOfSwitch(showsReceipt)},
    };
    return stored.Write(kId, values);
}

} // namespace providers

#include "services/providers/settings/ResizeSettings.h"

#include <vector>

namespace providers {
namespace {

constexpr auto kId = obcontract::TransformId::ResizeImages;
constexpr wchar_t kAim[] = L"Aim";

const ResizeAimRow* StoredAim(const TransformSettings& stored) {
    return RowByWord(kResizeAims, stored.Read(kId, kAim));
}

} // namespace

bool ResizeSettings::AreStored(const TransformSettings& stored) {
    return StoredAim(stored) != nullptr;
}

ResizeSettings ResizeSettings::Load(const TransformSettings& stored) {
    ResizeSettings settings;
    if (const ResizeAimRow* const row = StoredAim(stored)) settings.aim = row->aim;
    for (std::size_t aim = 0; aim < kResizeAimCount; ++aim) {
        const ResizeAimRow& row = kResizeAims[aim];
        settings.numbers[aim] =
            NumberOf(stored.Read(kId, row.value), row.least, row.most).value_or(row.usual);
    }
    return settings;
}

// The value that AreStored looks for is written last.
bool ResizeSettings::Save(const TransformSettings& stored) const {
    std::vector<SettingValue> values;
    for (std::size_t row = 0; row < kResizeAimCount; ++row) {
        values.push_back({kResizeAims[row].value, std::to_wstring(numbers[row])});
    }
    values.push_back({kAim, kResizeAims[static_cast<std::size_t>(aim)].word});
    return stored.Write(kId, values);
}

} // namespace providers

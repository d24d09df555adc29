#include "services/providers/settings/WatermarkSettings.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace providers {
namespace {

constexpr auto kId = obcontract::TransformId::Watermark;
constexpr wchar_t kText[] = L"Text";
constexpr wchar_t kPlace[] = L"Place";
constexpr wchar_t kOpacity[] = L"Opacity";

std::wstring StoredText(const TransformSettings& stored) {
    std::wstring text = stored.Read(kId, kText).value_or(L"");
    if (text.size() > kLongestWatermark) text.clear();
    return text;
}

} // namespace

bool WatermarkSettings::AreStored(const TransformSettings& stored) {
    return !StoredText(stored).empty();
}

WatermarkSettings WatermarkSettings::Load(const TransformSettings& stored) {
    WatermarkSettings settings;
    if (const std::wstring text = StoredText(stored); !text.empty()) settings.text = text;
    const auto word = stored.Read(kId, kPlace);
    const auto* const place =
        std::ranges::find_if(kWatermarkPlaces, [&](const wchar_t* name) { return word == name; });
    if (place != std::end(kWatermarkPlaces)) {
        settings.place = static_cast<WatermarkPlace>(place - std::begin(kWatermarkPlaces));
    }
    settings.opacity = NumberOf(stored.Read(kId, kOpacity), kLeastOpacity, kMostOpacity)
                           .value_or(settings.opacity);
    return settings;
}

// The value that AreStored looks for is written last.
bool WatermarkSettings::Save(const TransformSettings& stored) const {
    const std::vector<SettingValue> values = {
        {kPlace, kWatermarkPlaces[static_cast<std::size_t>(place)]},
        {kOpacity, std::to_wstring(opacity)},
        {kText, text}};
    return stored.Write(kId, values);
}

} // namespace providers

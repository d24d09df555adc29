#include "services/providers/settings/WatermarkSettings.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace providers {
namespace {

constexpr auto kId = obcontract::TransformId::Watermark;
constexpr wchar_t kText[] = L"Text";
constexpr wchar_t kKind[] = L"Kind";
constexpr wchar_t kPicture[] = L"Picture"; // the name of a value, and a word of the kind
constexpr wchar_t kPlace[] = L"Place";
constexpr wchar_t kOpacity[] = L"Opacity";

std::wstring StoredText(const TransformSettings& stored) {
    std::wstring text = stored.Read(kId, kText).value_or(L"");
    if (text.size() > kLongestWatermark) text.clear();
    return text;
}

std::wstring StoredPicture(const TransformSettings& stored) {
    std::wstring path = stored.Read(kId, kPicture).value_or(L"");
    if (path.size() > kLongestPicturePath) path.clear();
    return path;
}

bool UsesPicture(const TransformSettings& stored) { return stored.Read(kId, kKind) == kPicture; }

} // namespace

bool WatermarkSettings::AreStored(const TransformSettings& stored) {
    return !(UsesPicture(stored) ? StoredPicture(stored) : StoredText(stored)).empty();
}

WatermarkSettings WatermarkSettings::Load(const TransformSettings& stored) {
    WatermarkSettings settings;
    if (const std::wstring text = StoredText(stored); !text.empty()) settings.text = text;
    settings.usesPicture = UsesPicture(stored);
    settings.picture = StoredPicture(stored);
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

// The values that AreStored looks for are written last.
bool WatermarkSettings::Save(const TransformSettings& stored) const {
    const std::vector<SettingValue> values = {
        {kPlace, kWatermarkPlaces[static_cast<std::size_t>(place)]},
        {kOpacity, std::to_wstring(opacity)},
        {kPicture, picture},
        {kKind, usesPicture ? kPicture : kText},
        {kText, text}};
    return stored.Write(kId, values);
}

} // namespace providers

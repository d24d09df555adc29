#include "services/providers/settings/PhotoSettings.h"

#include <iterator>

namespace providers {
namespace {

using obcontract::WorkPhotoKinds;

constexpr auto kId = obcontract::TransformId::ConvertPhotos;
constexpr wchar_t kQuality[] = L"Quality";

struct KindRow {
    bool PhotoSettings::*isWanted;
    const wchar_t* value;
    WorkPhotoKinds kind;
};
constexpr KindRow kKinds[] = {
    {&PhotoSettings::webp, L"Webp", WorkPhotoKinds::Webp},
    {&PhotoSettings::tiff, L"Tiff", WorkPhotoKinds::Tiff},
    {&PhotoSettings::bmp, L"Bmp", WorkPhotoKinds::Bmp},
};

const PhotoQualityRow* StoredQuality(const TransformSettings& stored) {
    return RowByWord(kPhotoQualities, stored.Read(kId, kQuality));
}

} // namespace

obcontract::WorkPhoto PhotoSettings::Order() const noexcept {
    auto kinds = static_cast<std::uint32_t>(WorkPhotoKinds::All);
    for (const KindRow& row : kKinds) {
        if (!(this->*row.isWanted)) kinds &= ~static_cast<std::uint32_t>(row.kind);
    }
    return {kPhotoQualities[static_cast<std::size_t>(quality)].jpeg,
            static_cast<WorkPhotoKinds>(kinds)};
}

bool PhotoSettings::AreStored(const TransformSettings& stored) {
    return StoredQuality(stored) != nullptr;
}

PhotoSettings PhotoSettings::Load(const TransformSettings& stored) {
    PhotoSettings settings;
    if (const PhotoQualityRow* const row = StoredQuality(stored)) settings.quality = row->quality;
    for (const KindRow& row : kKinds) {
        bool& isWanted = settings.*row.isWanted;
        isWanted = SwitchOf(stored.Read(kId, row.value)).value_or(isWanted);
    }
    return settings;
}

// The value that AreStored looks for is written last.
bool PhotoSettings::Save(const TransformSettings& stored) const {
    SettingValue values[std::size(kKinds) + 1];
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
        values[i] = {kKinds[i].value, TextOfSwitch(this->*kKinds[i].isWanted)};
    }
    values[std::size(kKinds)] = {kQuality, kPhotoQualities[static_cast<std::size_t>(quality)].word};
    return stored.Write(kId, values);
}

} // namespace providers

#include "services/providers/settings/PdfSettings.h"

namespace providers {
namespace {

constexpr auto kId = obcontract::TransformId::ConvertPdf;
constexpr wchar_t kPage[] = L"Page", kPictures[] = L"Pictures", kDocuments[] = L"Documents";

const PdfPageRow* StoredPage(const TransformSettings& stored) {
    return RowByWord(kPdfPages, stored.Read(kId, kPage));
}

} // namespace

obcontract::WorkPdf PdfSettings::Order() const noexcept {
    return {kPdfPages[static_cast<std::size_t>(page)].asked, 0};
}

bool PdfSettings::AreStored(const TransformSettings& stored) {
    return StoredPage(stored) != nullptr;
}

PdfSettings PdfSettings::Load(const TransformSettings& stored) {
    PdfSettings settings;
    if (const PdfPageRow* const row = StoredPage(stored)) settings.page = row->page;
    settings.pictures = SwitchOf(stored.Read(kId, kPictures)).value_or(settings.pictures);
    settings.documents = SwitchOf(stored.Read(kId, kDocuments)).value_or(settings.documents);
    return settings;
}

// The value that AreStored looks for is written last.
bool PdfSettings::Save(const TransformSettings& stored) const {
    const SettingValue values[] = {
        {kPictures, TextOfSwitch(pictures)},
        {kDocuments, TextOfSwitch(documents)},
        {kPage, kPdfPages[static_cast<std::size_t>(page)].word},
    };
    return stored.Write(kId, values);
}

} // namespace providers

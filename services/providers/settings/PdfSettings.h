// What becomes PDF, and how large the pages of pictures are (id 3).
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "contracts/TransformWork.h"
#include "services/providers/settings/TransformSettings.h"

namespace providers {

enum class PdfPage : std::uint8_t { AsPicture, A4, Letter };

// What the dialog, the registry and the work process know of a page.
struct PdfPageRow {
    PdfPage page;
    const wchar_t* word; // as it is stored
    obcontract::WorkPage asked;
};

// In the order of the enumeration.
inline constexpr PdfPageRow kPdfPages[] = {
    {PdfPage::AsPicture, L"AsPicture", obcontract::WorkPage::AsPicture},
    {PdfPage::A4, L"A4", obcontract::WorkPage::A4},
    {PdfPage::Letter, L"Letter", obcontract::WorkPage::Letter},
};

struct PdfSettings {
    bool pictures = true;
    bool documents = true;
    PdfPage page = PdfPage::AsPicture; // of pictures
    bool operator==(const PdfSettings&) const = default;

    // For the work process, which makes PDFs of pictures.
    obcontract::WorkPdf Order() const noexcept;

    // As for PersonalDataSettings.
    static bool AreStored(const TransformSettings& stored);
    static PdfSettings Load(const TransformSettings& stored);
    bool Save(const TransformSettings& stored) const;
};

} // namespace providers

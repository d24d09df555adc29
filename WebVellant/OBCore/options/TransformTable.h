// The automatic transforms: one row each, in the order in which they are loaded, saved, run and
// reported.
#pragma once

#include <algorithm>
#include <array>

#include "OBCore/options/OBOptions.h"
#include "contracts/ProviderManager.h"

namespace obcore {

struct TransformRow {
    obcontract::TransformId id; // its provider in the provider manager
    bool OBOptions::*option;    // on: the user wants it
    const wchar_t* value;       // of that option, in the user's key
    const wchar_t* extraFile;   // has to be beside this library; null: none
    const wchar_t* usageWord;   // in usage events, with its comma
    bool worksOnOneFile = true;
};

inline constexpr std::array<TransformRow, 8> kTransforms{{
    {obcontract::TransformId::ConvertPdf, &OBOptions::AutoConvertPDF, L"AutoConvertPDF", nullptr,
     L"DOCTOPDF,"},
    {obcontract::TransformId::CombinePdfs, &OBOptions::AutoCombinePDFs, L"AutoCombinePDFs", nullptr,
     L"COMBINEPDFFILES,", false},
    {obcontract::TransformId::ResizeImages, &OBOptions::AutoResizeImages, L"AutoResizeImages",
     nullptr, L"IMAGERESIZE,"},
    {obcontract::TransformId::Watermark, &OBOptions::AutoWatermark, L"AutoWatermark", nullptr,
     L"WATERMARK,"},
    {obcontract::TransformId::ConvertPhotos, &OBOptions::AutoConvertPhotos, L"AutoConvertPhotos",
     L"Aspose.Imaging.dll", L"CONVPHOTOS,"},
    {obcontract::TransformId::RemoveInfo, &OBOptions::AutoRemoveInfo, L"AutoRemoveInfo",
     L"GroupDocs.Metadata.dll", L"REMOVEPERSDATA,"},
    {obcontract::TransformId::SignPdfs, &OBOptions::AutoSignPDFs, L"AutoSignPDFs", nullptr,
     L"SIGNPDFFILES,"},
    {obcontract::TransformId::ConvertFromPdf, &OBOptions::AutoConvertFromPDF, L"AutoConvertFromPDF",
     nullptr, L"PDFTODOC,"},
}};

// Whether the options ask for any transform.
inline bool WantsTransforms(const OBOptions& options) {
    return std::ranges::any_of(kTransforms,
                               [&](const TransformRow& row) { return options.*row.option; });
}

// Whether the options ask for a transform that applies to a single file.
inline bool WantsTransformsOfOneFile(const OBOptions& options) {
    return std::ranges::any_of(kTransforms, [&](const TransformRow& row) {
        return row.worksOnOneFile && options.*row.option;
    });
}

// The row of a transform.
constexpr const TransformRow& RowOf(obcontract::TransformId id) {
    return *std::ranges::find(kTransforms, id, &TransformRow::id);
}

} // namespace obcore

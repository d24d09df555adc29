// The transforms: the option that asks for each, its provider and its word in usage events, in the
// order in which they are selected and reported.
#pragma once

#include "OBCore/options/OBOptions.h"
#include "contracts/ProviderManager.h"

namespace obcore {

struct TransformRow {
    bool OBOptions::*option;
    obcontract::TransformId id;
    const wchar_t* usageWord; // with its comma
};

inline constexpr TransformRow kTransforms[] = {
    {&OBOptions::AutoConvertPDF, obcontract::TransformId::ConvertPdf, L"DOCTOPDF,"},
    {&OBOptions::AutoCombinePDFs, obcontract::TransformId::CombinePdfs, L"COMBINEPDFFILES,"},
    {&OBOptions::AutoResizeImages, obcontract::TransformId::ResizeImages, L"IMAGERESIZE,"},
    {&OBOptions::AutoWatermark, obcontract::TransformId::Watermark, L"WATERMARK,"},
    {&OBOptions::AutoConvertPhotos, obcontract::TransformId::ConvertPhotos, L"CONVPHOTOS,"},
    {&OBOptions::AutoRemoveInfo, obcontract::TransformId::RemoveInfo, L"REMOVEPERSDATA,"},
    {&OBOptions::AutoSignPDFs, obcontract::TransformId::SignPdfs, L"SIGNPDFFILES,"},
    {&OBOptions::AutoConvertFromPDF, obcontract::TransformId::ConvertFromPdf, L"PDFTODOC,"},
};

// Whether the options ask for any transform.
inline bool WantsTransforms(const OBOptions& options) {
    for (const TransformRow& row : kTransforms) {
        if (options.*row.option) return true;
    }
    return false;
}

} // namespace obcore

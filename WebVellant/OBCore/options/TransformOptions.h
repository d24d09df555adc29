// The switches of the automatic transforms: one row each, in the order of loading and saving.
#pragma once

#include <array>

#include "OBCore/options/OBOptions.h"

namespace obcore {

struct TransformOption {
    const wchar_t* value; // in the user's key
    bool OBOptions::*field;
    obcontract::TransformId provider;
    const wchar_t* extraFile; // has to lie beside this library; null: none
};

inline constexpr std::array<TransformOption, 8> kTransformOptions{{
    {L"AutoConvertPDF", &OBOptions::AutoConvertPDF, obcontract::TransformId::ConvertPdf, nullptr},
    {L"AutoCombinePDFs", &OBOptions::AutoCombinePDFs, obcontract::TransformId::CombinePdfs,
     nullptr},
    {L"AutoResizeImages", &OBOptions::AutoResizeImages, obcontract::TransformId::ResizeImages,
     nullptr},
    {L"AutoWatermark", &OBOptions::AutoWatermark, obcontract::TransformId::Watermark, nullptr},
    {L"AutoConvertPhotos", &OBOptions::AutoConvertPhotos, obcontract::TransformId::ConvertPhotos,
     L"Aspose.Imaging.dll"},
    {L"AutoRemoveInfo", &OBOptions::AutoRemoveInfo, obcontract::TransformId::RemoveInfo,
     L"GroupDocs.Metadata.dll"},
    {L"AutoSignPDFs", &OBOptions::AutoSignPDFs, obcontract::TransformId::SignPdfs, nullptr},
    {L"AutoConvertFromPDF", &OBOptions::AutoConvertFromPDF, obcontract::TransformId::ConvertFromPdf,
     nullptr},
}};

// Reads all eight from the user's key. A value that is absent leaves its field alone. One that is
// there turns its field on only if it isn't "0", the extra file lies beside this library, and the
// record's provider manager is set and supports the transform.
void LoadTransformOptions(HKEY userKey, OBOptions& options);

void SaveTransformOptions(HKEY userKey, const OBOptions& options);

} // namespace obcore

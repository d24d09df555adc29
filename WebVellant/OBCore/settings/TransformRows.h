// The automatic transforms in the settings window: a check box each, and for most a button that
// opens the settings of the transform's provider.
#pragma once

#include <windows.h>

#include <array>

#include "OBCore/options/OBOptions.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "contracts/ProviderManager.h"

namespace obcore {

struct TransformBoxRow {
    obcontract::TransformId id;
    bool OBOptions::*option;
    int box;
    int settings;   // 0: none
    bool asksReady; // GetReadyForConvert is asked before the option is on
};

inline constexpr std::array<TransformBoxRow, 8> kTransformBoxes{{
    {obcontract::TransformId::ConvertPdf, &OBOptions::AutoConvertPDF, OB_OPTIONS_CONVERT_PDF,
     OB_OPTIONS_CONVERT_PDF_SETTINGS, true},
    {obcontract::TransformId::ResizeImages, &OBOptions::AutoResizeImages, OB_OPTIONS_RESIZE_IMAGES,
     OB_OPTIONS_RESIZE_IMAGES_SETTINGS, false},
    {obcontract::TransformId::Watermark, &OBOptions::AutoWatermark, OB_OPTIONS_WATERMARK,
     OB_OPTIONS_WATERMARK_SETTINGS, false},
    {obcontract::TransformId::ConvertPhotos, &OBOptions::AutoConvertPhotos,
     OB_OPTIONS_CONVERT_PHOTOS, OB_OPTIONS_CONVERT_PHOTOS_SETTINGS, true},
    {obcontract::TransformId::RemoveInfo, &OBOptions::AutoRemoveInfo, OB_OPTIONS_REMOVE_INFO,
     OB_OPTIONS_REMOVE_INFO_SETTINGS, true},
    {obcontract::TransformId::CombinePdfs, &OBOptions::AutoCombinePDFs, OB_OPTIONS_COMBINE_PDFS, 0,
     false},
    {obcontract::TransformId::SignPdfs, &OBOptions::AutoSignPDFs, OB_OPTIONS_SIGN_PDFS,
     OB_OPTIONS_SIGN_PDFS_SETTINGS, false},
    {obcontract::TransformId::ConvertFromPdf, &OBOptions::AutoConvertFromPDF,
     OB_OPTIONS_CONVERT_FROM_PDF, OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS, false},
}};

// All three on the thread of the dialog `window`.

// Ticks the boxes whose options are on.
void TickTransformBoxes(HWND window, const OBOptions& options);

// Disables box and button of each transform that the provider manager of `options` doesn't support;
// without a manager all.
void DisableMissingTransforms(HWND window, const OBOptions& options);

// A box or a button was pressed. False when `id` is neither. A box stores its state in the option;
// one that was ticked is cleared again, and its option with it, when the manager can't get the
// transform ready or the user cancels its settings. Saves nothing.
bool OnTransformCommand(HWND window, int id, OBOptions& options);

} // namespace obcore

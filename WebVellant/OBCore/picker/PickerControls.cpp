#include "OBCore/picker/PickerControls.h"

#include <algorithm>
#include <string>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using obcontract::kSwitchEncryptionOff;
using obcontract::ProviderKind;
using obcontract::TransformId;

namespace obcore {
namespace {

constexpr DWORD kChoiceGroup = 100;
constexpr DWORD kPictureGroup = 102;
constexpr DWORD kConvertGroup = 103;
constexpr DWORD kPdfGroup = 104;
constexpr DWORD kTransformGroups[] = {kPictureGroup, kConvertGroup, kPdfGroup};

using enum TransformId;

constexpr TransformControl kTransformControls[] = {
    {kPictureGroup, kResizeImagesCheck, TextId::ResizeImages, &OBOptions::AutoResizeImages,
     ResizeImages, false},
    {kPictureGroup, kConvertPhotosCheck, TextId::ConvertPhotos, &OBOptions::AutoConvertPhotos,
     ConvertPhotos, true},
    {kPictureGroup, kRemoveInfoCheck, TextId::RemoveInfo, &OBOptions::AutoRemoveInfo, RemoveInfo,
     true},
    {kConvertGroup, kWatermarkCheck, TextId::Watermark, &OBOptions::AutoWatermark, Watermark,
     false},
    {kConvertGroup, kConvertPdfCheck, TextId::ConvertPdf, &OBOptions::AutoConvertPDF, ConvertPdf,
     true},
    {kConvertGroup, kConvertFromPdfCheck, TextId::ConvertFromPdf, &OBOptions::AutoConvertFromPDF,
     ConvertFromPdf, false},
    {kPdfGroup, kCombinePdfsCheck, TextId::CombinePdfs, &OBOptions::AutoCombinePDFs, CombinePdfs,
     false},
    {kPdfGroup, kSignPdfsCheck, TextId::SignPdfs, &OBOptions::AutoSignPDFs, SignPdfs, false},
};

// The order in which the states are refreshed is not that in which the controls were added.
constexpr DWORD kRefreshOrder[] = {
    kResizeImagesCheck,  kConvertPdfCheck, kCombinePdfsCheck, kWatermarkCheck,
    kConvertPhotosCheck, kRemoveInfoCheck, kSignPdfsCheck,    kConvertFromPdfCheck,
};

CDCONTROLSTATEF EnabledIf(bool enabled) noexcept {
    return enabled ? CDCS_ENABLEDVISIBLE : CDCS_VISIBLE;
}

bool WantsZip(const OBOptions& options) noexcept { return options.SendItem || options.AutoEncrypt; }

void DropRefusedEncryption(HWND owner, OBAttachJob& job) {
    if (!job.AutoEncrypt || job.NoEncryption || job.AllowedEncryptMethods == 0) return;
    if (IsEncryptionRefused(owner)) job.AutoEncrypt = false;
}

void AddChoice(IFileDialogCustomize& customize, DWORD list, DWORD item, TextId text,
               CDCONTROLSTATEF state) {
    customize.AddRadioButtonList(list);
    customize.AddControlItem(list, item, LoadText(text).c_str());
    customize.SetControlState(list, state);
}

// A group that can't be started is left out; its neighbours are tried all the same.
void AddChoices(IFileDialogCustomize& customize, const OBOptions& options) {
    if (FAILED(customize.StartVisualGroup(kChoiceGroup, L""))) return;
    const ChoiceStates states = ComputeChoiceStates(options);
    AddChoice(customize, kZipList, kZipItem, TextId::ChoiceZip, states.zip);
    AddChoice(customize, kZipAndEncryptList, kZipAndEncryptItem, TextId::ChoiceZipAndEncrypt,
              states.zipAndEncrypt);
    AddChoice(customize, kNoZipList, kNoZipItem, TextId::ChoiceNoZip, states.noZip);
    customize.EndVisualGroup();
}

void AddTransforms(IFileDialogCustomize& customize, DWORD group, const OBOptions& options) {
    if (FAILED(customize.StartVisualGroup(group, L""))) return;
    for (const TransformControl& row : kTransformControls) {
        if (row.group != group) continue;
        customize.AddCheckButton(row.control, LoadText(row.text).c_str(), options.*row.field);
    }
    customize.EndVisualGroup();
}

void SelectChoice(IFileDialogCustomize& customize, const OBOptions& options) {
    if (options.AutoEncrypt) {
        customize.SetSelectedControlItem(kZipAndEncryptList, kZipAndEncryptItem);
    } else if (options.SendItem) {
        customize.SetSelectedControlItem(kZipList, kZipItem);
    } else {
        customize.SetSelectedControlItem(kNoZipList, kNoZipItem);
    }
}

bool IsSupported(const OBAttachJob& job, TransformId transform) {
    return job.ProviderManager && ProviderManager().IsProviderSupport(
                                      job.ProviderManager, static_cast<std::uint32_t>(transform),
                                      ProviderKind::Transform) != 0;
}

} // namespace

std::span<const TransformControl> TransformControls() noexcept { return kTransformControls; }

const TransformControl* FindTransformControl(DWORD control) noexcept {
    const auto* const row =
        std::ranges::find(kTransformControls, control, &TransformControl::control);
    return row == std::end(kTransformControls) ? nullptr : row;
}

ChoiceStates ComputeChoiceStates(const OBOptions& options) noexcept {
    const bool wantsZip = WantsZip(options);
    const bool zipOffAndLocked = !wantsZip && options.DisableMsgEditZipOption;
    const bool forcedOff = options.AdminSendItem == AdminSendItemKind::ForcedOff;

    const bool zip = !options.AlwaysEncrypt && !forcedOff && !zipOffAndLocked;
    // Compulsory encryption outdoes everything that would take the choice away.
    const bool encrypt =
        options.AlwaysEncrypt || (!options.NoEncryption && options.AllowedEncryptMethods != 0 &&
                                  !forcedOff && !zipOffAndLocked);
    const bool noZip = !options.AlwaysEncrypt &&
                       options.AdminSendItem != AdminSendItemKind::ForcedOn &&
                       !(options.DisableMsgEditZipOption && wantsZip);
    return {EnabledIf(zip), EnabledIf(encrypt), EnabledIf(noZip)};
}

bool IsEncryptionRefused(HWND owner) {
    const std::uint32_t answer = ArchiveService().TryToShowWarningOrErrorMessage(owner, 0, 1);
    return LOWORD(answer) == kSwitchEncryptionOff;
}

void AddPickerControls(IFileDialog& dialog, HWND owner, OBAttachJob& job) {
    ObLib::ComPtr<IFileDialogCustomize> customize;
    if (FAILED(dialog.QueryInterface(IID_IFileDialogCustomize,
                                     reinterpret_cast<void**>(customize.Put())))) {
        return;
    }
    DropRefusedEncryption(owner, job);
    AddChoices(*customize.Get(), job);
    for (const DWORD group : kTransformGroups) AddTransforms(*customize.Get(), group, job);
    SelectChoice(*customize.Get(), job);
    UpdateTransformControls(customize.Get(), job, 0);
}

void UpdateTransformControls(IFileDialogCustomize* customize, OBAttachJob& job,
                             std::uint32_t selectionCount) {
    const bool open = (selectionCount < 2 && job.SingleAttachConversion) || WantsZip(job);
    for (const DWORD control : kRefreshOrder) {
        const TransformControl& row = *FindTransformControl(control);
        customize->SetControlState(control, EnabledIf(open && IsSupported(job, row.transform)));
    }
}

} // namespace obcore

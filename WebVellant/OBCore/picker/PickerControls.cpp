#include "OBCore/picker/PickerControls.h"

#include <algorithm>
#include <string>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/modules/TraceFailure.h"
#include "OBCore/options/TransformTable.h"
#include "ObLib/Src/Win32/ComResources.h"

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

// The option of a transform comes from the table of all transforms.
constexpr TransformControl Control(DWORD group, DWORD control, TextId text, TransformId transform,
                                   bool needsReady = false) {
    return {group, control, text, RowOf(transform).option, transform, needsReady};
}

constexpr TransformControl kTransformControls[] = {
    Control(kPictureGroup, kResizeImagesCheck, TextId::ResizeImages, ResizeImages),
    Control(kPictureGroup, kConvertPhotosCheck, TextId::ConvertPhotos, ConvertPhotos, true),
    Control(kPictureGroup, kRemoveInfoCheck, TextId::RemoveInfo, RemoveInfo, true),
    Control(kConvertGroup, kWatermarkCheck, TextId::Watermark, Watermark),
    Control(kConvertGroup, kConvertPdfCheck, TextId::ConvertPdf, ConvertPdf, true),
    Control(kConvertGroup, kConvertFromPdfCheck, TextId::ConvertFromPdf, ConvertFromPdf),
    Control(kPdfGroup, kCombinePdfsCheck, TextId::CombinePdfs, CombinePdfs),
    Control(kPdfGroup, kSignPdfsCheck, TextId::SignPdfs, SignPdfs),
};

// The order in which the states are refreshed is not that in which the controls were added.
constexpr DWORD kRefreshOrder[] = {
    kResizeImagesCheck,  kConvertPdfCheck, kCombinePdfsCheck, kWatermarkCheck,
    kConvertPhotosCheck, kRemoveInfoCheck, kSignPdfsCheck,    kConvertFromPdfCheck,
};

CDCONTROLSTATEF EnabledIf(bool enabled) noexcept {
    return enabled ? CDCS_ENABLEDVISIBLE : CDCS_VISIBLE;
}

void DropRefusedEncryption(HWND owner, OBAttachJob& job) {
    if (!job.AutoEncrypt || job.NoEncryption || job.AllowedEncryptMethods == 0) return;
    if (IsEncryptionRefused(owner)) job.AutoEncrypt = false;
}

HRESULT AddChoiceItem(IFileDialogCustomize& customize, const ChoiceControl& choice) {
    return TraceFailure("AddControlItem", customize.AddControlItem(choice.list, choice.item,
                                                                   LoadText(choice.text).c_str()));
}

void AddChoice(IFileDialogCustomize& customize, const ChoiceControl& choice,
               CDCONTROLSTATEF state) {
    TraceFailure("AddRadioButtonList", customize.AddRadioButtonList(choice.list));
    AddChoiceItem(customize, choice);
    TraceFailure("SetControlState", customize.SetControlState(choice.list, state));
}

// A group that can't be started is left out; the others are tried all the same.
bool StartGroup(IFileDialogCustomize& customize, DWORD group) {
    return SUCCEEDED(TraceFailure("StartVisualGroup", customize.StartVisualGroup(group, L"")));
}

void EndGroup(IFileDialogCustomize& customize) {
    TraceFailure("EndVisualGroup", customize.EndVisualGroup());
}

void AddChoices(IFileDialogCustomize& customize, const OBOptions& options) {
    if (!StartGroup(customize, kChoiceGroup)) return;
    const ChoiceStates states = ComputeChoiceStates(options);
    AddChoice(customize, kZipChoice, states.zip);
    AddChoice(customize, kZipAndEncryptChoice, states.zipAndEncrypt);
    AddChoice(customize, kNoZipChoice, states.noZip);
    EndGroup(customize);
}

void AddTransforms(IFileDialogCustomize& customize, DWORD group, const OBOptions& options) {
    if (!StartGroup(customize, group)) return;
    for (const TransformControl& row : kTransformControls) {
        if (row.group != group) continue;
        TraceFailure(
            "AddCheckButton",
            customize.AddCheckButton(row.control, LoadText(row.text).c_str(), options.*row.field));
    }
    EndGroup(customize);
}

const ChoiceControl& ChoiceOf(const OBOptions& options) noexcept {
    if (options.AutoEncrypt) return kZipAndEncryptChoice;
    return options.SendItem ? kZipChoice : kNoZipChoice;
}

void SelectChoice(IFileDialogCustomize& customize, const OBOptions& options) {
    const ChoiceControl& choice = ChoiceOf(options);
    TraceFailure("SetSelectedControlItem",
                 customize.SetSelectedControlItem(choice.list, choice.item));
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
    const bool wantsZip = options.MakesZip();
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

void ClearChoice(IFileDialogCustomize& customize, const ChoiceControl& choice) {
    TraceFailure("SetSelectedControlItem", customize.SetSelectedControlItem(choice.list, kNoItem));
}

bool IsEncryptionRefused(HWND owner) {
    const std::uint32_t answer = ArchiveService().TryToShowWarningOrErrorMessage(owner, 0, 1);
    return LOWORD(answer) == kSwitchEncryptionOff;
}

void AddPickerControls(IFileDialog& dialog, HWND owner, OBAttachJob& job) {
    ObLib::ComPtr<IFileDialogCustomize> customize;
    void** const out = reinterpret_cast<void**>(customize.Put());
    if (FAILED(
            TraceFailure("QueryInterface", dialog.QueryInterface(IID_IFileDialogCustomize, out)))) {
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
    const bool open = (selectionCount < 2 && job.SingleAttachConversion) || job.MakesZip();
    for (const DWORD control : kRefreshOrder) {
        const TransformControl& row = *FindTransformControl(control);
        const CDCONTROLSTATEF state = EnabledIf(open && IsSupported(job, row.transform));
        TraceFailure("SetControlState", customize->SetControlState(control, state));
    }
}

} // namespace obcore

// The picker's own controls in the shell dialog: which there are, in which state each one opens,
// and how the transforms follow the options and the selection.
//
// All calls come on the thread that shows the dialog.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <cstdint>
#include <span>

#include "OBCore/modules/TextIds.h"
#include "OBCore/options/OBAttachJob.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// One of the three choices. Each is a radio list of its own with one item, so that each can be
// disabled by itself; nothing but this code clears the other two.
struct ChoiceControl {
    DWORD list;
    DWORD item;
    TextId text;
};
inline constexpr ChoiceControl kZipChoice{997, 1000, TextId::ChoiceZip};
inline constexpr ChoiceControl kZipAndEncryptChoice{998, 1001, TextId::ChoiceZipAndEncrypt};
inline constexpr ChoiceControl kNoZipChoice{999, 1002, TextId::ChoiceNoZip};
inline constexpr DWORD kNoItem = 0; // selecting it clears a list

inline constexpr DWORD kResizeImagesCheck = 1003;
inline constexpr DWORD kConvertPdfCheck = 1006;
inline constexpr DWORD kWatermarkCheck = 1007;
inline constexpr DWORD kConvertPhotosCheck = 1008;
inline constexpr DWORD kRemoveInfoCheck = 1009;
inline constexpr DWORD kCombinePdfsCheck = 1010;
inline constexpr DWORD kSignPdfsCheck = 1011;
inline constexpr DWORD kConvertFromPdfCheck = 1012;

// One check box of a transform. `needsReady`: ticking it asks the provider manager first whether
// the transform can be used.
struct TransformControl {
    DWORD group;
    DWORD control;
    TextId text;
    bool OBOptions::*field;
    obcontract::TransformId transform;
    bool needsReady;
};

// All of them, in the order in which they are added.
std::span<const TransformControl> TransformControls() noexcept;

// Null for an id that is no transform's check box.
const TransformControl* FindTransformControl(DWORD control) noexcept;

// The states in which the three choices open.
struct ChoiceStates {
    CDCONTROLSTATEF zip;
    CDCONTROLSTATEF zipAndEncrypt;
    CDCONTROLSTATEF noZip;
};
ChoiceStates ComputeChoiceStates(const OBOptions& options) noexcept;

// Clears the choice's radio list. A dialog that refuses leaves a trace line, and the list looks
// selected besides the new choice; what counts is the job.
void ClearChoice(IFileDialogCustomize& customize, const ChoiceControl& choice);

// Whether the archive service refuses encryption for this run. The service may show the user the
// reason in a box on `owner`.
bool IsEncryptionRefused(HWND owner);

// Adds all controls to the dialog, if it can be customised, and sets their first states. Switches
// AutoEncrypt off for the run when encryption is possible and the archive service refuses it.
void AddPickerControls(IFileDialog& dialog, HWND owner, OBAttachJob& job);

// Enables the transforms that make sense for that many selected items and that the provider manager
// supports, and disables the others. Ticks and fields stay as they are: a disabled control keeps
// its tick, and the pipeline still sees its field.
void UpdateTransformControls(IFileDialogCustomize* customize, OBAttachJob& job,
                             std::uint32_t selectionCount);

} // namespace obcore

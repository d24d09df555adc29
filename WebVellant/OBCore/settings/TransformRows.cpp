#include "OBCore/settings/TransformRows.h"

#include <algorithm>
#include <cstdint>

#include "OBCore/modules/ProviderLibrary.h"

using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

std::uint32_t NumberOf(const TransformBoxRow& row) { return static_cast<std::uint32_t>(row.id); }

bool IsSupported(const TransformBoxRow& row, ProviderManagerHandle manager) {
    return manager && ProviderManager().IsProviderSupport(manager, NumberOf(row),
                                                          ProviderKind::Transform) != 0;
}

void Disable(HWND window, int id) {
    if (const HWND control = id != 0 ? GetDlgItem(window, id) : nullptr) {
        EnableWindow(control, FALSE);
    }
}

bool GetReady(HWND window, const TransformBoxRow& row, ProviderManagerHandle manager) {
    return !row.asksReady || ProviderManager().GetReadyForConvert(window, manager, NumberOf(row),
                                                                  ProviderKind::Transform) != 0;
}

bool HasSettings(HWND window, const TransformBoxRow& row, ProviderManagerHandle manager) {
    return ProviderManager().ShowProviderOptionsWhenNoOptionsSet(
               manager, NumberOf(row), ProviderKind::Transform, nullptr, window) != 0;
}

void OnBox(HWND window, const TransformBoxRow& row, OBOptions& options) {
    bool& option = options.*row.option;
    option = IsDlgButtonChecked(window, row.box) == BST_CHECKED;
    if (!option) return;
    const ProviderManagerHandle manager = options.ProviderManager;
    if (manager && GetReady(window, row, manager) && HasSettings(window, row, manager)) return;
    CheckDlgButton(window, row.box, BST_UNCHECKED);
    option = false;
}

void OnSettings(HWND window, const TransformBoxRow& row, const OBOptions& options) {
    if (!options.ProviderManager) return;
    ProviderManager().ShowProviderOptions(options.ProviderManager, NumberOf(row),
                                          ProviderKind::Transform, nullptr, window);
}

} // namespace

void TickTransformBoxes(HWND window, const OBOptions& options) {
    for (const TransformBoxRow& row : kTransformBoxes) {
        if (options.*row.option) CheckDlgButton(window, row.box, BST_CHECKED);
    }
}

void DisableMissingTransforms(HWND window, const OBOptions& options) {
    for (const TransformBoxRow& row : kTransformBoxes) {
        if (IsSupported(row, options.ProviderManager)) continue;
        Disable(window, row.box);
        Disable(window, row.settings);
    }
}

bool OnTransformCommand(HWND window, int id, OBOptions& options) {
    const auto row = std::ranges::find_if(kTransformBoxes, [&](const TransformBoxRow& one) {
        return one.box == id || one.settings == id;
    });
    if (id == 0 || row == kTransformBoxes.end()) return false;
    if (id == row->box) {
        OnBox(window, *row, options);
    } else {
        OnSettings(window, *row, options);
    }
    return true;
}

} // namespace obcore

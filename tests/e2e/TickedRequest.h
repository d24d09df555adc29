// A whole request in which the UI driver ticks the box of a transform.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "contracts/ProviderManager.h"
#include "tests/e2e/RealRequest.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {

// The texts of the boxes.
enum class Box : UINT {
    ConvertPdf = 180,
    AddWatermark = 181,
    ResizeImages = 182,
    ConvertPhotos = 184,
    RemovePersonalData = 185,
    CombinePdfs = 186,
};

class TickedRequest : public RealRequest {
protected:
    // What the UI driver does in the picker; settings that aren't stored would be asked for.
    Use PickTicked(Box boxText, Choice choice, std::vector<std::wstring> paths) const {
        return [box = Text(static_cast<UINT>(boxText)),
                pick = Pick(choice, std::move(paths))](OpenPicker& picker) {
            ASSERT_TRUE(WaitUntil([&] { return picker.IsEnabled(box); }));
            ASSERT_TRUE(picker.Click(box));
            ASSERT_TRUE(WaitUntil([&] { return picker.IsChecked(box); }));
            pick(picker);
        };
    }
    // Stores a setting of a transform.
    static void Store(unsigned id, const wchar_t* name, const wchar_t* value) {
        const std::wstring key = std::wstring(obcontract::kProviderManagerKey) + L"\\Transforms\\";
        SetValue(HKEY_CURRENT_USER, key + std::to_wstring(id), name, value);
    }
};

} // namespace obtest

#include "ObLibX/src/dialog/FlatDressing.h"

#include <algorithm>
#include <cwchar>

#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DescribedControls.h"

namespace ObLibX {
namespace {

constexpr int kClassCapacity = 61; // of the name, with its NUL

const ControlDescription* DescriptionOf(const std::vector<ControlDescription>& described,
                                        std::int32_t id) {
    const auto found = std::ranges::find(described, id, &ControlDescription::id);
    return found == described.end() ? nullptr : &*found;
}

std::unique_ptr<ObCustomControl> Dressed(HWND child, const ControlDescription* description) {
    const MakeControl make = TheControlMaker().control;
    auto control = make != nullptr ? make(child, description) : nullptr;
    if (!control) return nullptr;
    control->window = child;
    if (description != nullptr) {
        control->tooltipText = description->tooltip;
        control->itemData = description->itemData;
    }
    return control;
}

} // namespace

std::vector<std::unique_ptr<ObCustomControl>>
CreateFlatControls(HWND dialog, std::int32_t templateId,
                   const std::function<bool(HWND child)>& hasObject) {
    std::vector<ControlDescription> described;
    ReadDialogDescription(templateId, described);
    std::vector<std::unique_ptr<ObCustomControl>> controls;
    ForEachChild(dialog, [&](HWND child) {
        const std::int32_t id = GetDlgCtrlID(child);
        if (id == 0 || hasObject(child)) return;
        if (auto control = Dressed(child, DescriptionOf(described, id))) {
            controls.push_back(std::move(control));
        }
    });
    return controls;
}

void ForEachChild(HWND dialog, const std::function<void(HWND child)>& use) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        children.push_back(child);
    }
    for (const HWND child : children) use(child);
}

bool IsOfClass(HWND window, const wchar_t* name) {
    wchar_t own[kClassCapacity] = {};
    return GetClassNameW(window, own, kClassCapacity) != 0 && _wcsicmp(own, name) == 0;
}

} // namespace ObLibX

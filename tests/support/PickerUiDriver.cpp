#include "tests/support/PickerUiDriver.h"

#include <commctrl.h>

#include <algorithm>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {
namespace {

// The file name field: of IFileDialog, and of GetOpenFileNameW.
constexpr int kFileNameEdits[] = {1152, 1148};

std::wstring WithoutMarks(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

HWND NameField(HWND dialog) {
    return FindDescendant(dialog, [](HWND child) {
        return std::ranges::find(kFileNameEdits, GetDlgCtrlID(child)) != std::end(kFileNameEdits) &&
               ClassOf(child) == L"Edit";
    });
}

bool IsPicker(HWND window) { return IsDialog(window) && NameField(window); }

// A radio button or check box; push buttons, which the dialog has of its own, are none.
bool IsChoice(HWND window) {
    if (ClassOf(window) != L"Button") return false;
    const LONG kind = GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK;
    return kind == BS_AUTOCHECKBOX || kind == BS_CHECKBOX || kind == BS_AUTORADIOBUTTON ||
           kind == BS_RADIOBUTTON;
}

// Sends LVM_SETITEMSTATE with the structure in the memory of the window's process.
bool SetRowState(HWND list, int row, UINT state) {
    DWORD processId = 0;
    GetWindowThreadProcessId(list, &processId);
    const ObLib::UniqueKernelHandle process(
        OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, processId));
    if (!process) return false;
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED;
    item.state = state;
    void* const remote =
        VirtualAllocEx(process.Get(), nullptr, sizeof(item), MEM_COMMIT, PAGE_READWRITE);
    if (!remote) return false;
    DWORD_PTR done = 0;
    if (WriteProcessMemory(process.Get(), remote, &item, sizeof(item), nullptr)) {
        SendMessageTimeoutW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                            reinterpret_cast<LPARAM>(remote), SMTO_NORMAL, 5000, &done);
    }
    VirtualFreeEx(process.Get(), remote, 0, MEM_RELEASE);
    return done != 0;
}

HWND FileList(HWND dialog) {
    return FindDescendant(dialog, [](HWND child) { return ClassOf(child) == L"SysListView32"; });
}

} // namespace

OpenPicker OpenPicker::Await(DWORD processId, DWORD limit) {
    return OpenPicker(WaitForTopWindow(&IsPicker, processId, limit));
}

std::vector<std::wstring> OpenPicker::ChoiceTexts() const {
    struct Placed {
        RECT place;
        std::wstring text;
    };
    std::vector<Placed> placed;
    for (const HWND child : Descendants(window_)) {
        if (!IsChoice(child) || !IsWindowVisible(child)) continue;
        Placed entry{{}, WithoutMarks(TextOf(child))};
        GetWindowRect(child, &entry.place);
        placed.push_back(entry);
    }
    std::ranges::stable_sort(placed, [](const Placed& one, const Placed& other) {
        return std::pair(one.place.top, one.place.left) <
               std::pair(other.place.top, other.place.left);
    });
    std::vector<std::wstring> texts;
    for (const Placed& entry : placed) texts.push_back(entry.text);
    return texts;
}

HWND OpenPicker::Button(const std::wstring& text) const {
    return FindDescendant(window_, [wanted = WithoutMarks(text)](HWND child) {
        return IsChoice(child) && WithoutMarks(TextOf(child)) == wanted;
    });
}

bool OpenPicker::IsChecked(const std::wstring& text) const {
    const HWND button = Button(text);
    return button && SendMessageW(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

// The dialog disables a radio list through the parent window of its buttons.
bool OpenPicker::IsEnabled(const std::wstring& text) const {
    HWND window = Button(text);
    if (!window) return false;
    for (; window && window != window_; window = GetAncestor(window, GA_PARENT)) {
        if (!IsWindowEnabled(window)) return false;
    }
    return true;
}

bool OpenPicker::Click(const std::wstring& text) const {
    return IsEnabled(text) && obtest::Click(Button(text));
}

bool OpenPicker::TypeNames(const std::wstring& names) const {
    const HWND field = NameField(window_);
    if (!field) return false;
    SetText(field, names);
    return TextOf(field) == names;
}

std::wstring OpenPicker::QuotedNames(const std::vector<std::wstring>& names) {
    std::wstring all;
    for (const std::wstring& name : names) all += (all.empty() ? L"\"" : L" \"") + name + L"\"";
    return all;
}

bool OpenPicker::SelectInList(const std::vector<int>& rows) const {
    const HWND list = FileList(window_);
    if (!list) return false;
    bool all = SetRowState(list, -1, 0); // -1: every row
    for (const int row : rows) all = SetRowState(list, row, LVIS_SELECTED) && all;
    return all;
}

int OpenPicker::RowCount() const {
    const HWND list = FileList(window_);
    DWORD_PTR count = 0;
    const bool answered =
        list && SendMessageTimeoutW(list, LVM_GETITEMCOUNT, 0, 0, SMTO_NORMAL, 2000, &count);
    return answered ? static_cast<int>(count) : -1;
}

PickerUiDriver::PickerUiDriver(std::function<void(OpenPicker&)> use, DWORD processId)
    : WindowDriver([processId] { return FindTopWindow(&IsPicker, processId); },
                   [use = std::move(use)](HWND window) {
                       OpenPicker picker(window);
                       use(picker);
                   },
                   kGrace) {}

} // namespace obtest

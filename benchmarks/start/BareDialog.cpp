// Shows the shell's dialog with as few calls as possible: what the host is compared with.
//
//   bare_dialog OWNER [controls]   the owner window as a decimal number; with "controls", as many
//                                  and the same kinds of controls as the product's dialog has
#include <windows.h>

#include <shobjidl.h>

#include <cwchar>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/ScopeExit.h"

namespace {

constexpr FILEOPENDIALOGOPTIONS kOptions =
    FOS_FORCEFILESYSTEM | FOS_ALLOWMULTISELECT | FOS_PATHMUSTEXIST | FOS_FILEMUSTEXIST;

// How many check buttons each group has, after the three radio lists.
constexpr int kCheckGroups[] = {3, 3, 2};

void AddControls(IFileDialogCustomize& customize) {
    DWORD id = 1;
    customize.StartVisualGroup(id++, L"");
    for (int list = 0; list < 3; ++list) {
        customize.AddRadioButtonList(id++);
        customize.AddControlItem(id - 1, id, L"A choice of the user");
        ++id;
    }
    customize.EndVisualGroup();
    for (const int count : kCheckGroups) {
        customize.StartVisualGroup(id++, L"");
        for (int button = 0; button < count; ++button) {
            customize.AddCheckButton(id++, L"A choice of the user", FALSE);
        }
        customize.EndVisualGroup();
    }
}

HRESULT Show(HWND owner, bool withControls) {
    ObLib::ComPtr<IFileOpenDialog> dialog;
    const HRESULT made =
        CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                         reinterpret_cast<void**>(dialog.Put()));
    if (FAILED(made)) return made;
    dialog->SetOptions(kOptions);
    ObLib::ComPtr<IFileDialogCustomize> customize;
    if (withControls && SUCCEEDED(dialog->QueryInterface(
                            IID_IFileDialogCustomize, reinterpret_cast<void**>(customize.Put())))) {
        AddControls(*customize.Get());
    }
    return dialog->Show(owner);
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t* arguments, int) {
    wchar_t* end = nullptr;
    const long long owner = std::wcstoll(arguments, &end, 10);
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    if (FAILED(com)) return 1;
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    return Show(reinterpret_cast<HWND>(static_cast<INT_PTR>(owner)), *end != L'\0') ==
                   HRESULT_FROM_WIN32(ERROR_CANCELLED)
               ? 0
               : 1;
}

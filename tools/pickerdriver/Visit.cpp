#include "tools/pickerdriver/Visit.h"

#include <shlwapi.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/WindowKit.h"
#include "tests/support/WindowPicture.h"
#include "tools/pickerdriver/Output.h"

namespace pickerdriver {
namespace {

constexpr int kMessageTextId = 0xFFFF; // of a message box
constexpr DWORD kLookEvery = 20;       // milliseconds

bool IsTextOrButton(HWND child) {
    const std::wstring name = obtest::ClassOf(child);
    return name == L"Static" || name == L"Button";
}

bool IsMessageBox(HWND window) {
    return obtest::IsDialog(window) && GetDlgItem(window, kMessageTextId) &&
           std::ranges::all_of(obtest::Descendants(window), &IsTextOrButton);
}

std::optional<std::wstring> FindMessageBox() {
    const HWND box = obtest::FindTopWindow(&IsMessageBox);
    if (!box) return std::nullopt;
    return obtest::ItemText(box, kMessageTextId);
}

// Reads a message and closes it.
void CloseNote() {
    const HWND box = obtest::FindTopWindow(&IsMessageBox);
    if (!box) return;
    Say(L"a message: " + obtest::ItemText(box, kMessageTextId));
    PostMessageW(box, WM_CLOSE, 0, 0);
    while (IsWindow(box)) Sleep(kLookEvery);
}

// The UI driver expects no message box; to wait on would only hide the box's text.
void Await(const std::wstring& what, DWORD limit, HANDLE program,
           const std::function<bool()>& holds) {
    const ULONGLONG end = GetTickCount64() + limit;
    while (!holds()) {
        if (const auto text = FindMessageBox()) {
            throw Failure{L"a message instead of " + what + L": " + *text};
        }
        if (program && WaitForSingleObject(program, 0) == WAIT_OBJECT_0 && !holds()) {
            throw Failure{L"the program ended before " + what};
        }
        if (GetTickCount64() > end) throw Failure{L"time is up: no " + what};
        Sleep(kLookEvery);
    }
}

// A text of the product's library, without marks for keys.
std::wstring LibraryText(UINT id) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    PathRemoveFileSpecW(path);
    PathAppendW(path, L"obwmcore64.dll");
    const ObLib::UniqueModule library(
        LoadLibraryExW(path, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    if (!library) throw Failure{std::wstring(L"no texts: ") + path + L" can't be read"};
    wchar_t text[512] = {};
    LoadStringW(library.Get(), id, text, 512);
    std::wstring plain = text;
    std::erase(plain, L'&');
    return plain;
}

std::wstring ChoiceText(Choice choice) {
    constexpr UINT kFirstChoice = 101; // zip, encrypt, none, in this order
    return LibraryText(kFirstChoice + static_cast<UINT>(choice));
}

void TakePictureOf(HWND window, const Task& task, const wchar_t* suffix) {
    if (task.picture.empty()) return;
    std::wstring path = task.picture;
    const std::size_t point = std::min(path.rfind(L'.'), path.size());
    path.insert(point, suffix);
    const auto picture = obtest::TakeSettledPicture(window);
    if (!picture) throw Failure{L"the window stays blank: no picture for " + path};
    if (!obtest::WritePng(*picture, path)) throw Failure{path + L" can't be written"};
    Say(L"picture: " + path);
}

void Choose(const obtest::OpenPicker& picker, const Task& task, HANDLE program) {
    if (!task.hasChoice) return;
    const std::wstring text = ChoiceText(task.choice);
    Await(L"choice \"" + text + L"\"", task.limit, program, [&] { return picker.IsEnabled(text); });
    if (!picker.Click(text)) throw Failure{L"the choice \"" + text + L"\" takes no click"};
    Await(L"mark at \"" + text + L"\"", task.limit, program,
          [&] { return picker.IsChecked(text); });
    Say(L"chosen: " + text);
}

// The visible dialog that has this control; null when there is none.
HWND DialogWith(int control) {
    struct Search {
        int control;
        HWND found;
    } search{control, nullptr};
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            const bool is = IsWindowVisible(window) && obtest::ClassOf(window) == L"#32770" &&
                            GetDlgItem(window, wanted.control);
            if (is) wanted.found = window;
            return !is;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void PressOkOf(HWND dialog, const Task& task, HANDLE program, const wchar_t* suffix) {
    TakePictureOf(dialog, task, suffix);
    PostMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    Await(L"end of the dialog", task.limit, program, [&] { return !IsWindow(dialog); });
}

void ChangeSettings(HWND settings, const Task& task) {
    if (task.tick->pressed != 0) {
        SendMessageW(GetDlgItem(settings, task.tick->pressed), BM_CLICK, 0, 0);
    }
    if (task.value.empty() || task.tick->valueField == 0) return;
    SendMessageW(GetDlgItem(settings, task.tick->valueField), WM_SETTEXT, 0,
                 reinterpret_cast<LPARAM>(task.value.c_str()));
}

void TakeSettings(const Task& task, HANDLE program, const std::wstring& box) {
    HWND settings = nullptr;
    Await(L"settings of \"" + box + L"\"", task.limit, program, [&] {
        if (task.tick->mayHaveNote) CloseNote();
        settings = DialogWith(task.tick->settings);
        return settings != nullptr;
    });
    ChangeSettings(settings, task);
    PressOkOf(settings, task, program, L"-settings");
}

// Ticking the box that combines PDFs ticks the one that makes them too, about which a sentence may
// be shown before.
void AwaitTickWithSentences(const obtest::OpenPicker& picker, const std::wstring& text,
                            DWORD limit) {
    constexpr UINT kConvertPdf = 180; // the id of the box's text
    const std::wstring brought = LibraryText(kConvertPdf);
    obtest::WaitUntil(
        [&] {
            CloseNote();
            return picker.IsChecked(text) && picker.IsChecked(brought);
        },
        limit);
}

// Ticks the box. The settings of its transform, of which a fresh prefix has none, are asked for.
void Tick(const obtest::OpenPicker& picker, const Task& task, HANDLE program) {
    if (!task.tick) return;
    const std::wstring text = LibraryText(task.tick->box);
    Await(L"box \"" + text + L"\"", task.limit, program, [&] { return picker.IsEnabled(text); });
    if (!picker.Click(text)) throw Failure{L"the box \"" + text + L"\" takes no click"};
    if (task.tick->settings != 0) {
        TakeSettings(task, program, text);
    } else {
        AwaitTickWithSentences(picker, text, task.limit);
    }
    Await(L"tick at \"" + text + L"\"", task.limit, program,
          [&] { return picker.IsChecked(text); });
    Say(L"ticked: " + text);
}

// What was removed is shown before the files go to the page.
void TakeReceipt(const Task& task, HANDLE program) {
    if (!task.tick || !task.tick->hasReceipt || task.cancel) return;
    HWND receipt = nullptr;
    Await(L"receipt", task.limit, program, [&] {
        receipt = DialogWith(OB_RECEIPT_LIST);
        return receipt != nullptr;
    });
    PressOkOf(receipt, task, program, L"-receipt");
    Say(L"receipt seen, files attached");
}

void TypeNames(const obtest::OpenPicker& picker, const Task& task) {
    if (task.files.empty()) return;
    const std::wstring names =
        task.files.size() == 1 ? task.files.front() : obtest::OpenPicker::QuotedNames(task.files);
    if (!picker.TypeNames(names)) throw Failure{L"the name field doesn't take " + names};
    Say(L"typed: " + names);
}

void GivePassword(const Task& task, HANDLE program) {
    obtest::OpenPasswordPrompt prompt(nullptr);
    Await(L"password prompt", task.limit, program, [&] {
        prompt = obtest::OpenPasswordPrompt::Find();
        return prompt.Window() != nullptr;
    });
    if (!prompt.Type(task.password, task.password)) throw Failure{L"the prompt lacks a field"};
    Await(L"password taken", task.limit, program,
          [&] { return IsWindowEnabled(GetDlgItem(prompt.Window(), IDOK)) != FALSE; });
    TakePictureOf(prompt.Window(), task, L"-password");
    prompt.PressOk();
    Await(L"end of the password prompt", task.limit, program,
          [&] { return !IsWindow(prompt.Window()); });
    Say(L"password given");
}

} // namespace

void VisitPicker(const Task& task, HANDLE program) {
    obtest::OpenPicker picker(nullptr);
    Await(L"picker", task.limit, program, [&] {
        picker = obtest::OpenPicker::Await(0, 0);
        return picker.Window() != nullptr;
    });
    Say(L"the picker is open");
    TakePictureOf(picker.Window(), task, L"");
    Choose(picker, task, program);
    Tick(picker, task, program);
    TypeNames(picker, task);
    TakePictureOf(picker.Window(), task, L"-chosen");
    task.cancel ? picker.PressCancel() : picker.PressOk();
    Await(L"end of the picker", task.limit, nullptr, [&] { return !picker.IsOpen(); });
    Say(task.cancel ? L"pressed Cancel" : L"pressed Open");
    TakeReceipt(task, program);
    if (task.choice == Choice::Encrypt && !task.cancel) GivePassword(task, program);
}

} // namespace pickerdriver

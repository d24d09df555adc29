#include "tools/pickerdriver/Visit.h"

#include "tests/support/PasswordUiDriver.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/WindowKit.h"
#include "tools/pickerdriver/CloudVisit.h"
#include "tools/pickerdriver/Output.h"
#include "tools/pickerdriver/Questions.h"
#include "tools/pickerdriver/Screen.h"

namespace pickerdriver {
namespace {

std::wstring ChoiceText(Choice choice) {
    constexpr UINT kFirstChoice = 101; // zip, encrypt, none, in this order
    return PlainText(L"obwmcore64.dll", kFirstChoice + static_cast<UINT>(choice));
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
    PressButtonOf(settings, IDOK, task, program, L"-settings");
}

// Ticking the box that combines PDFs ticks the one that makes them too, about which a sentence may
// be shown before.
void AwaitTickWithSentences(const obtest::OpenPicker& picker, const std::wstring& text,
                            DWORD limit) {
    constexpr UINT kConvertPdf = 180; // the id of the box's text
    const std::wstring brought = PlainText(L"obwmcore64.dll", kConvertPdf);
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
    const std::wstring text = PlainText(L"obwmcore64.dll", task.tick->box);
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
    AnswerQuestions(task, program);
    if (!task.cancel) LogIn(task, program);
    if (task.choice == Choice::Encrypt && !task.cancel) GivePassword(task, program);
}

} // namespace pickerdriver

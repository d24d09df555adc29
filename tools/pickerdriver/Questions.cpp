#include "tools/pickerdriver/Questions.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "services/providers/ui/TextIds.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/WindowKit.h"
#include "tools/pickerdriver/MailPage.h"
#include "tools/pickerdriver/Output.h"
#include "tools/pickerdriver/Screen.h"

namespace pickerdriver {
namespace {

constexpr wchar_t kManager[] = L"PVXManager64.dll"; // whose texts the questions are
constexpr DWORD kLookEvery = 20;                    // milliseconds

// What was answered so far.
struct Answers {
    std::vector<std::wstring> typedFor; // questions that got the password
    bool sawReceipt = false;
};

// Whether the sentence is this text of the manager, with any file's name in it.
bool IsAbout(const std::wstring& sentence, UINT id) {
    const std::wstring text = PlainText(kManager, id);
    const std::size_t name = text.find(L"%1");
    return name != std::wstring::npos && sentence.starts_with(text.substr(0, name)) &&
           sentence.ends_with(text.substr(name + 2));
}

// A password that was typed for this question, or that didn't open the file, isn't typed again.
bool HelpsPassword(const std::wstring& sentence, const Task& task, const Answers& answers) {
    return !task.pdfPassword.empty() && !IsAbout(sentence, OB_TEXT_PDF_PASSWORD_WRONG) &&
           std::ranges::find(answers.typedFor, sentence) == answers.typedFor.end();
}

void AnswerPassword(HWND question, const Task& task, HANDLE program, Answers& answers) {
    const std::wstring sentence = obtest::ItemText(question, OB_PDF_PASSWORD_SENTENCE);
    Say(L"a question: " + sentence);
    int button = OB_PDF_PASSWORD_LEAVE;
    if (HelpsPassword(sentence, task, answers)) {
        obtest::TypeCharacters(GetDlgItem(question, OB_PDF_PASSWORD_TEXT), task.pdfPassword);
        answers.typedFor.push_back(sentence);
        button = IDOK;
    }
    PressButtonOf(question, button, task, program, L"-pdf-password");
    Say(button == IDOK ? L"password typed" : L"the file is left as it is");
}

// What leaves the file as it is: Yes, except where Yes removes a signature.
int ButtonOf(const std::wstring& message) {
    return IsAbout(message, OB_TEXT_COMBINE_SIGNED) ? IDNO : IDYES;
}

void AnswerMessage(HWND box, const Task& task) {
    TakePictureOf(box, task, L"-message");
    const std::wstring message = MessageOf(box);
    const HWND answer = GetDlgItem(box, ButtonOf(message));
    Say(L"a message: " + message + (answer ? L" [" + obtest::TextOf(answer) + L"]" : L""));
    PostMessageW(answer ? answer : box, answer ? BM_CLICK : WM_CLOSE, 0, 0);
    if (!obtest::WaitUntil([&] { return !IsWindow(box); }, task.limit)) {
        throw Failure{L"the message doesn't close"};
    }
}

void ReadReceipt(HWND receipt) {
    Say(L"receipt: " + obtest::ItemText(receipt, OB_RECEIPT_HEADLINE));
    std::wistringstream list(obtest::ItemText(receipt, OB_RECEIPT_LIST));
    for (std::wstring line; std::getline(list, line);) {
        std::erase(line, L'\r');
        if (!line.empty()) Say(L"receipt: " + line);
    }
}

// Whether there was something to answer.
bool AnswerOne(const Task& task, HANDLE program, Answers& answers) {
    if (const HWND question = DialogWith(OB_PDF_PASSWORD_TEXT)) {
        AnswerPassword(question, task, program, answers);
    } else if (const HWND receipt = DialogWith(OB_RECEIPT_LIST)) {
        ReadReceipt(receipt);
        PressButtonOf(receipt, IDOK, task, program, L"-receipt");
        answers.sawReceipt = true;
    } else if (const HWND box = MessageBoxOnScreen()) {
        AnswerMessage(box, task);
    } else {
        return false;
    }
    return true;
}

bool IsOver(const Task& task, const Answers& answers) {
    if (task.choice == Choice::Encrypt && obtest::OpenPasswordPrompt::Find().Window()) return true;
    if (task.pageResult.empty()) return answers.sawReceipt || !task.tick->hasReceipt;
    return HasAnswer(task);
}

} // namespace

void AnswerQuestions(const Task& task, HANDLE program) {
    if (!task.tick || task.cancel) return;
    Answers answers;
    ULONGLONG end = GetTickCount64() + task.limit;
    while (!IsOver(task, answers)) {
        if (AnswerOne(task, program, answers)) {
            end = GetTickCount64() + task.limit;
            continue;
        }
        if (program && WaitForSingleObject(program, 0) == WAIT_OBJECT_0) break;
        if (GetTickCount64() > end) throw Failure{L"time is up: the page hasn't got its files"};
        Sleep(kLookEvery);
    }
    const bool attached = !task.pageResult.empty() && HasFiles(task);
    if (task.tick->hasReceipt && attached && !answers.sawReceipt) {
        throw Failure{L"the page got its files without a receipt"};
    }
}

} // namespace pickerdriver

#include "tools/pickerdriver/CloudVisit.h"

#include <commctrl.h>

#include <optional>

#include "OBCore/modules/DialogIds.h"
#include "demo/mailpage/MailWindow.h"
#include "services/providers/storage/UploadDialogIds.h"
#include "services/providers/webdav/DavLoginDialogIds.h"
#include "services/providers/webdav/DavPickerIds.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/WindowKit.h"
#include "tests/support/WindowPicture.h"
#include "tools/pickerdriver/MailPage.h"
#include "tools/pickerdriver/Output.h"
#include "tools/pickerdriver/Screen.h"

namespace pickerdriver {
namespace {

constexpr int kCloudButton = 3011;
constexpr DWORD kLookEvery = 20; // milliseconds

HWND AwaitDialog(int control, const wchar_t* what, const Task& task, HANDLE program) {
    HWND dialog = nullptr;
    Await(what, task.limit, program, [&] { return (dialog = DialogWith(control)) != nullptr; });
    return dialog;
}

void Press(HWND list, WPARAM key) { PostMessageW(list, WM_KEYDOWN, key, 1); }

void AwaitEnabled(HWND control, const wchar_t* what, const Task& task, HANDLE program) {
    Await(what, task.limit, program, [=] { return IsWindowEnabled(control) != FALSE; });
}

// The second row of the chooser is that of WebDAV servers.
void Choose(const Task& task, HANDLE program) {
    const HWND chooser = AwaitDialog(OB_CHOOSER_LIST, L"chooser of an account", task, program);
    const HWND list = GetDlgItem(chooser, OB_CHOOSER_LIST);
    for (const WPARAM key : {VK_DOWN, VK_DOWN, VK_SPACE}) Press(list, key);
    const HWND button = GetDlgItem(chooser, OB_CHOOSER_CONTINUE);
    AwaitEnabled(button, L"chosen account", task, program);
    TakePictureOf(chooser, task, L"-chooser");
    Say(L"chosen in the list of accounts: " + obtest::TextOf(button));
    obtest::Click(button);
}

// The state is empty until the server has answered something else than yes.
void AwaitLogin(HWND login, const Task& task, HANDLE program) {
    Await(L"end of the login", task.limit, program, [&] {
        if (!obtest::IsOpen(login)) return true;
        const std::wstring state = obtest::ItemText(login, OB_DAV_LOGIN_STATE);
        if (IsWindowEnabled(GetDlgItem(login, IDOK)) && !state.empty()) {
            throw Failure{L"the login reports: " + state};
        }
        return false;
    });
}

// A short upload may be over before anybody sees its window.
void LookAtUpload(const Task& task, HANDLE program) {
    std::optional<obtest::Picture> picture;
    Await(L"end of the upload", task.limit, program, [&] {
        const HWND upload = picture ? nullptr : DialogWith(OB_UPLOAD_BAR);
        if (upload) picture = obtest::TakeSettledPicture(upload, 8, 5 * kLookEvery);
        return HasAnswer(task);
    });
    if (task.picture.empty()) return;
    if (!picture || !obtest::WritePng(*picture, PictureName(task, L"-upload"))) {
        Say(L"the upload was over before its window could be drawn");
    }
}

obtest::OpenPicker AwaitPicker(const Task& task, HANDLE program) {
    obtest::OpenPicker picker(nullptr);
    Await(L"picker", task.limit, program, [&] {
        picker = obtest::OpenPicker::Await(0, 0);
        return picker.Window() != nullptr;
    });
    return picker;
}

void ChooseLastRow(HWND cloud, const Task& task, HANDLE program) {
    const HWND list = GetDlgItem(cloud, OB_DAVPICK_LIST);
    Await(L"list of the server", task.limit, program,
          [=] { return SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) > 0; });
    Press(list, VK_END);
    Press(list, VK_SPACE);
    AwaitEnabled(GetDlgItem(cloud, IDOK), L"selected file", task, program);
    TakePictureOf(cloud, task, L"-cloud-list");
}

} // namespace

void LogIn(const Task& task, HANDLE program) {
    if (task.server.empty()) return;
    Choose(task, program);
    const HWND login = AwaitDialog(OB_DAV_ADDRESS, L"login", task, program);
    obtest::SetText(GetDlgItem(login, OB_DAV_ADDRESS), task.server);
    obtest::SetText(GetDlgItem(login, OB_DAV_USER), task.user);
    obtest::SetText(GetDlgItem(login, OB_DAV_PASSWORD), task.serverPassword);
    TakePictureOf(login, task, L"-login");
    obtest::PressCommand(login, IDOK);
    AwaitLogin(login, task, program);
    Say(L"logged in to " + task.server);
    LookAtUpload(task, program);
}

void PickFromCloud(const Task& task, HWND page, HANDLE program) {
    if (!DeleteFileW(task.pageResult.c_str()))
        throw Failure{task.pageResult + L" can't be removed"};
    obtest::Click(GetDlgItem(page, mailpage::kAttachButton));
    const obtest::OpenPicker picker = AwaitPicker(task, program);
    const HWND button = GetDlgItem(picker.Window(), kCloudButton);
    AwaitEnabled(button, L"cloud button", task, program);
    TakePictureOf(picker.Window(), task, L"-cloud");
    obtest::Click(button);
    const HWND cloud = AwaitDialog(OB_DAVPICK_LIST, L"list of stored files", task, program);
    ChooseLastRow(cloud, task, program);
    obtest::PressCommand(cloud, IDOK);
    Await(L"end of the pick", task.limit, program, [&] { return !picker.IsOpen(); });
    Say(L"picked by the cloud button");
}

} // namespace pickerdriver

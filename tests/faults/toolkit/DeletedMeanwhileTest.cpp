// Dialogs whose object is deleted in a notification of one of their controls: nothing of the dialog
// or its controls is used afterwards.
#include <commctrl.h>

#include <functional>
#include <memory>
#include <utility>

#include "ObLibX/src/controls/ObCustPassword.h"
#include "tests/faults/toolkit/SpoiledMemory.h"
#include "tests/faults/toolkit/ToolkitSuite.h"

namespace obtest {
namespace {

// `onCommand` runs at each notification of a control, and may delete the dialog.
class NotifiedDialog : public EveryControlDialog {
public:
    bool OnCommandId(int, int, HWND) override {
        if (const auto call = onCommand) call();
        return false;
    }
    bool OnNotify(int id, NMHDR* header, LRESULT& result) override {
        if (id == 1030 && header->code == static_cast<UINT>(LVN_ITEMCHANGED)) {
            if (const auto call = onCommand) call();
            return false;
        }
        return EveryControlDialog::OnNotify(id, header, result);
    }
    std::function<void()> onCommand;
};

// Alt and F8 held down, or all keys up, for GetKeyState.
void SetKeys(bool isAltF8) {
    BYTE keys[256] = {};
    keys[VK_MENU] = isAltF8 ? 0x80 : 0;
    keys[VK_F8] = keys[VK_MENU];
    SetKeyboardState(keys);
}

class DeletedMeanwhile : public ToolkitSuite {
protected:
    // Opens a dialog that is deleted at a notification of this number, from 0 on. The button that
    // has the focus notifies when it loses it.
    NotifiedDialog& OpenOneThatIsDeletedAt(int notification) {
        left_ = notification;
        dialog_ = std::make_unique<NotifiedDialog>();
        dialog_->Open();
        const HWND focused = dialog_->GetItem(1010, true);
        SetWindowLongPtrW(focused, GWL_STYLE, GetWindowLongPtrW(focused, GWL_STYLE) | BS_NOTIFY);
        SetFocus(focused);
        dialog_->onCommand = [this] {
            if (left_-- == 0) dialog_.reset();
        };
        return *dialog_;
    }
    static HWND EyeOf(const EveryControlDialog& dialog) {
        return dynamic_cast<ObLibX::ObFlatPassword&>(*dialog.GetControl(1002)).eyeButton;
    }
    // A click, a press of Space, and the focus elsewhere, as far as the window is still there.
    static void Use(HWND item) {
        const auto send = [&](UINT message, WPARAM wParam, LPARAM lParam) {
            if (IsWindow(item)) SendMessageW(item, message, wParam, lParam);
        };
        send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        send(WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
        send(WM_KEYDOWN, VK_SPACE, 1);
        send(WM_KEYUP, VK_SPACE, 1);
        if (IsWindow(item)) SetFocus(GetDlgItem(GetParent(item), 1014));
        PumpPosted();
    }
    // True when the dialog has been deleted.
    bool UseOf(int id, int notification) {
        const SpoiledMemory spoiled;
        Use(OpenOneThatIsDeletedAt(notification).GetItem(id, true));
        const bool isDeleted = dialog_ == nullptr;
        dialog_.reset();
        return isDeleted;
    }

    std::unique_ptr<NotifiedDialog> dialog_;
    int left_ = 0; // notifications before the one at which it is deleted
};

// Edits: the focus that another one loses, then theirs; buttons and the switch: the first of these,
// and the click.
TEST_F(DeletedMeanwhile, InANotification) {
    for (const int id :
         {1001, 1002, 1003, 1010, 1011, 1012, 1013, 1014, 1015, 1016, 1018, 1019, 1020, 1031}) {
        int deleted = 0;
        for (int notification = 0; notification < 3; ++notification) {
            SCOPED_TRACE(id * 10 + notification);
            deleted += UseOf(id, notification);
        }
        EXPECT_LT(0, deleted) << id;
    }
}

// A list view by Space, which flips a row's check box.
TEST_F(DeletedMeanwhile, WhenACheckBoxOfAListIsFlipped) {
    const SpoiledMemory spoiled;
    NotifiedDialog& dialog = OpenOneThatIsDeletedAt(0);
    const auto call = std::exchange(dialog.onCommand, nullptr);
    const HWND list = dialog.GetItem(1030, true);
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    LVITEMW item{};
    SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    item.state = item.stateMask = LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&item));
    SetFocus(list);
    dialog.onCommand = call;
    SendMessageW(list, WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(nullptr, dialog_);
    EXPECT_FALSE(IsWindow(list));
}

TEST_F(DeletedMeanwhile, WhenAnEyeIsPressed) {
    const SpoiledMemory spoiled;
    for (int notification = 0; notification < 2; ++notification) {
        const HWND eye = EyeOf(OpenOneThatIsDeletedAt(notification));
        SendMessageW(eye, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        EXPECT_EQ(nullptr, dialog_) << notification;
        EXPECT_FALSE(IsWindow(eye)) << notification;
    }
}

// As the eye by Alt+F8: the field gets the focus and loses it.
TEST_F(DeletedMeanwhile, WhenAltAndF8ArePressed) {
    printf("Not when the dialog gives the focus back to the field: Wine's dialog procedure writes "
           "into "
           "what it keeps for a dialog, which has been freed by then.\n");
    for (int notification = 0; notification < 3; ++notification) {
        const SpoiledMemory spoiled;
        const HWND edit = OpenOneThatIsDeletedAt(notification).GetItem(1002, true);
        SetKeys(true);
        SendMessageW(edit, WM_SYSKEYDOWN, VK_F8, 0x20000001);
        SetKeys(false);
        EXPECT_EQ(nullptr, dialog_) << notification;
    }
}

TEST_F(DeletedMeanwhile, WhenTheSwitchTakesTheFocus) {
    const SpoiledMemory spoiled;
    const HWND window = OpenOneThatIsDeletedAt(0).GetItem(1018, true);
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    EXPECT_EQ(nullptr, dialog_);
    EXPECT_EQ(nullptr, GetCapture());
}

} // namespace
} // namespace obtest

// What the tests of controls share: a flat dialog with the objects that a test asks for, and fakes
// of what Wine lacks or what would take time: high contrast, timers, the mouse's leaving.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <commctrl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

// A timer that is set; a test makes it due.
struct FakeTimer {
    HWND window;
    UINT_PTR id;
    UINT milliseconds;
    TIMERPROC call;
};

// A text as it was drawn.
struct DrawnText {
    std::wstring text;
    RECT rect;
    UINT flags;
    COLORREF color;
};

struct ControlFakes {
    bool isContrast = false;
    std::vector<FakeTimer> timers;
    std::vector<TRACKMOUSEEVENT> tracked;
    std::vector<DrawnText> texts;
};
ControlFakes& Fakes();

using MakeObject = std::unique_ptr<ObLibX::ObCustomControl> (*)(std::int32_t id);

template <class Class>
std::unique_ptr<ObLibX::ObCustomControl> Make(std::int32_t id) {
    return std::make_unique<Class>(id);
}

// A flat dialog whose commands are recorded.
class FlatTestDialog : public ObLibX::ObXFlatDlg {
public:
    explicit FlatTestDialog(std::int32_t dialogTemplate)
        : ObXFlatDlg(dialogTemplate, nullptr, 0, false) {}
    bool OnCommandId(int id, int code, HWND) override {
        commands.push_back({id, code});
        if (const auto call = onCommand) call(); // a copy: the call may delete the dialog
        return true;
    }
    std::vector<std::pair<int, int>> commands;
    std::function<void()> onCommand;
};

class ControlsTest : public DialogTest {
protected:
    ControlsTest();
    ~ControlsTest() override;
    void SetUp() override;
    void TearDown() override;

    // Which class dresses the window of an id; the others stay stock. Before Open.
    static void Dress(const std::map<std::int32_t, MakeObject>& makers);
    void Open(std::int32_t dialogTemplate);

    HWND Item(std::int32_t id) const { return dialog_->GetItem(id, true); }
    template <class Class>
    Class& Object(std::int32_t id) const {
        return dynamic_cast<Class&>(*dialog_->GetControl(id));
    }
    LRESULT Send(std::int32_t id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(Item(id), message, wParam, lParam);
    }
    // From now on the window hides these cues of the keyboard, UISF_...; it is painted anew.
    void HideCues(std::int32_t id, UINT cues) const;
    // A pixel of what the window shows, in its own coordinates.
    COLORREF PixelOf(std::int32_t id, int x, int y) const;
    // All pixels, row by row, after it has painted what is invalid; and without that.
    std::vector<COLORREF> PixelsOf(std::int32_t id) const;
    std::vector<COLORREF> ShownPixels(std::int32_t id) const;
    SIZE SizeOf(std::int32_t id) const;
    // How many pixels of a window have a colour.
    long CountOf(std::int32_t id, COLORREF color) const;
    // Makes the first timer due; false when none is set.
    static bool Tick();
    // The text that was drawn last; the window is painted anew.
    DrawnText TextOf(std::int32_t id) const;

    std::unique_ptr<FlatTestDialog> dialog_;

private:
    struct Patches;
    std::unique_ptr<Patches> patches_;
};

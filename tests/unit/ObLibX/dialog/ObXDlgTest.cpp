// A dialog from its opening to its end, and which handler gets which message.
#include "ObLibX/src/dialog/ObXDlg.h"

#include <commctrl.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <stdexcept>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using ObLibX::ObXDlg;

std::wstring Numbers(std::initializer_list<std::int64_t> numbers) {
    std::wstring text;
    for (const std::int64_t number : numbers) text += L" " + std::to_wstring(number);
    return text;
}

// Records each handler with its arguments; `isHandled` is what handlers return.
class HandlerDialog : public RecordingDialog {
public:
    using RecordingDialog::RecordingDialog;

    bool OnOK() override { return Note(L"OnOK"); }
    bool OnHelp() override { return Note(L"OnHelp"); }
    bool OnCancel() override { return Note(L"OnCancel"); }
    bool OnContextMenu(WPARAM w, LPARAM l) override {
        return Note(L"OnContextMenu" + Numbers({static_cast<std::int64_t>(w), l}));
    }
    bool OnNotify(int id, NMHDR* header, LRESULT& result) override {
        result = 0x12345;
        return Note(L"OnNotify" + Numbers({id, static_cast<int>(header->code)}));
    }
    bool OnClose() override { return Note(L"OnClose"); }
    bool OnSize(WPARAM type, int width, int height) override {
        return Note(L"OnSize" + Numbers({static_cast<std::int64_t>(type), width, height}));
    }
    bool OnGetMinMaxInfo(MINMAXINFO* info) override {
        return Note(info != nullptr ? L"OnGetMinMaxInfo" : L"null");
    }
    bool OnMeasureItem(int id, MEASUREITEMSTRUCT*) override {
        return Note(L"OnMeasureItem" + Numbers({id}));
    }
    bool OnDrawItem(int id, DRAWITEMSTRUCT*) override {
        return Note(L"OnDrawItem" + Numbers({id}));
    }
    bool OnSizing(WPARAM edge, RECT* rect) override {
        return Note(L"OnSizing" + Numbers({static_cast<std::int64_t>(edge), rect->right}));
    }
    void OnMove(int x, int y) override { Note(L"OnMove" + Numbers({x, y})); }
    bool OnMoving(WPARAM edge, RECT* rect) override {
        return Note(L"OnMoving" + Numbers({static_cast<std::int64_t>(edge), rect->right}));
    }
    bool OnPaint() override { return Note(L"OnPaint"); }
    bool OnCommandId(int id, int code, HWND control) override {
        return Note(L"OnCommandId" + Numbers({id, code, reinterpret_cast<LPARAM>(control)}));
    }
    bool OnTimer(UINT_PTR id) override {
        return Note(L"OnTimer" + Numbers({static_cast<std::int64_t>(id)}));
    }
    bool OnSysCommand(WPARAM w, LPARAM l) override {
        return Note(L"OnSysCommand" + Numbers({static_cast<std::int64_t>(w), l}));
    }
    bool OnColorChange() override { return Note(L"OnColorChange"); }
    HBRUSH OnCtlColorDlg() override { return Brush(L"OnCtlColorDlg"); }
    HBRUSH OnCtlColorStatic(HWND, HDC) override { return Brush(L"OnCtlColorStatic"); }
    HBRUSH OnCtlColorBtn(HWND, HDC) override { return Brush(L"OnCtlColorBtn"); }
    bool OnUpdateUIState(WORD action, WORD state) override {
        return Note(L"OnUpdateUIState" + Numbers({action, state}));
    }
    LRESULT OnOtherMessage(UINT message, WPARAM w, LPARAM l) override {
        constexpr UINT kNoted[] = {WM_APP, WM_HSCROLL, WM_VSCROLL, WM_MOUSEWHEEL};
        if (std::ranges::find(kNoted, message) == std::end(kNoted)) {
            return ObXDlg::OnOtherMessage(message, w, l);
        }
        Note(L"OnOtherMessage" + Numbers({static_cast<std::int64_t>(w), l}));
        return 0x54321;
    }

    // The calls that a message leads to.
    std::vector<std::wstring> CallsOf(UINT message, WPARAM w = 0, LPARAM l = 0) {
        calls.clear();
        result = Send(message, w, l);
        return calls;
    }

    bool isHandled = true;
    bool isThrowing = false;
    LRESULT result = 0;

private:
    bool Note(const std::wstring& call) {
        calls.push_back(call);
        if (isThrowing) throw std::bad_alloc();
        return isHandled;
    }
    HBRUSH Brush(const wchar_t* call) {
        Note(call);
        return static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH));
    }
};

using Calls = std::vector<std::wstring>;

class ObXDlgTest : public DialogTest {};

TEST_F(ObXDlgTest, GivesEachMessageToItsHandler) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    RECT rect{1, 2, 3, 4};
    MINMAXINFO info{};
    MEASUREITEMSTRUCT measured{};
    DRAWITEMSTRUCT drawn{};
    struct Row {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        const wchar_t* call;
    };
    const Row rows[] = {
        {WM_COMMAND, 1, 0, L"OnOK"},
        {WM_COMMAND, 2, 0, L"OnCancel"},
        {WM_COMMAND, 9, 0, L"OnHelp"},
        {WM_COMMAND, MAKEWPARAM(1, 5), 0, L"OnOK"},
        {WM_COMMAND, MAKEWPARAM(1003, 5), 77, L"OnCommandId 1003 5 77"},
        {WM_HELP, 0, 0, L"OnHelp"},
        {WM_CONTEXTMENU, 5, 6, L"OnContextMenu 5 6"},
        {WM_CLOSE, 0, 0, L"OnClose"},
        {WM_SIZE, 1, MAKELPARAM(300, 200), L"OnSize 1 300 200"},
        {WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info), L"OnGetMinMaxInfo"},
        {WM_MEASUREITEM, 7, reinterpret_cast<LPARAM>(&measured), L"OnMeasureItem 7"},
        {WM_DRAWITEM, 8, reinterpret_cast<LPARAM>(&drawn), L"OnDrawItem 8"},
        {WM_SIZING, 2, reinterpret_cast<LPARAM>(&rect), L"OnSizing 2 3"},
        {WM_MOVE, 0, MAKELPARAM(-4, 9), L"OnMove -4 9"},
        {WM_MOVING, 3, reinterpret_cast<LPARAM>(&rect), L"OnMoving 3 3"},
        {WM_PAINT, 0, 0, L"OnPaint"},
        {WM_TIMER, 11, 0, L"OnTimer 11"},
        {WM_SYSCOMMAND, 12, 13, L"OnSysCommand 12 13"},
        {WM_SYSCOLORCHANGE, 0, 0, L"OnColorChange"},
        {WM_THEMECHANGED, 0, 0, L"OnColorChange"},
        {WM_CTLCOLORDLG, 0, 0, L"OnCtlColorDlg"},
        {WM_CTLCOLORSTATIC, 0, 0, L"OnCtlColorStatic"},
        {WM_CTLCOLORBTN, 0, 0, L"OnCtlColorBtn"},
        {WM_UPDATEUISTATE, MAKEWPARAM(1, 3), 0, L"OnUpdateUIState 1 3"},
        {WM_APP, 14, 15, L"OnOtherMessage 14 15"},
        {WM_HSCROLL, 16, 17, L"OnOtherMessage 16 17"},
        {WM_VSCROLL, 18, 19, L"OnOtherMessage 18 19"},
        {WM_MOUSEWHEEL, 20, 21, L"OnOtherMessage 20 21"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Calls{row.call}, dialog.CallsOf(row.message, row.wParam, row.lParam)) << row.call;
    }
}

TEST_F(ObXDlgTest, ReturnsWhetherAMessageIsHandledAndResultsOfOtherMessagesWhole) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    dialog.CallsOf(WM_CTLCOLORDLG);
    EXPECT_EQ(reinterpret_cast<LRESULT>(GetStockObject(GRAY_BRUSH)), dialog.result);
    const auto procedure =
        reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog.window, DWLP_DLGPROC));
    EXPECT_EQ(1, procedure(dialog.window, WM_CLOSE, 0, 0));
    for (const UINT message : {WM_APP, WM_VSCROLL, WM_MOUSEWHEEL}) {
        EXPECT_EQ(0x54321, procedure(dialog.window, message, 0, 0)) << message;
    }
    NMHDR header{nullptr, 5, 100};
    EXPECT_EQ(0x12345, procedure(dialog.window, WM_NOTIFY, 5, reinterpret_cast<LPARAM>(&header)));
    dialog.isHandled = false;
    EXPECT_EQ(0, procedure(dialog.window, WM_CLOSE, 0, 0));
    EXPECT_EQ(0, procedure(dialog.window, WM_NOTIFY, 5, reinterpret_cast<LPARAM>(&header)));
}

TEST_F(ObXDlgTest, GivesTheResultOfANotificationToItsSender) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    NMHDR header{nullptr, 5, 100};
    EXPECT_EQ(Calls{L"OnNotify 5 100"},
              dialog.CallsOf(WM_NOTIFY, 5, reinterpret_cast<LPARAM>(&header)));
    EXPECT_EQ(0x12345, dialog.result);
}

TEST_F(ObXDlgTest, ReturnsNothingForMessagesBeforeItHasAWindow) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    const auto procedure =
        reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog.window, DWLP_DLGPROC));
    const ObLib::UniqueWindow other(CreateWindowExW(0, L"#32770", L"", WS_POPUP, 0, 0, 100, 100,
                                                    nullptr, nullptr, nullptr, nullptr));
    dialog.calls.clear();
    EXPECT_EQ(0, procedure(other.Get(), WM_CLOSE, 0, 0));
    EXPECT_EQ(0, procedure(other.Get(), WM_APP, 14, 15));
    EXPECT_TRUE(dialog.calls.empty());
}

TEST_F(ObXDlgTest, TakesTwoNotificationsForHelp) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    for (const int code : {-205, -605}) {
        NMHDR header{nullptr, 5, static_cast<UINT>(code)};
        EXPECT_EQ(Calls{L"OnHelp"},
                  dialog.CallsOf(WM_NOTIFY, 5, reinterpret_cast<LPARAM>(&header)));
    }
}

TEST_F(ObXDlgTest, TakesAnExceptionOfAHandlerAsNotHandled) {
    HandlerDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    dialog.isThrowing = true;
    const auto procedure =
        reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog.window, DWLP_DLGPROC));
    EXPECT_EQ(0, procedure(dialog.window, WM_CLOSE, 0, 0));
    EXPECT_EQ(0, procedure(dialog.window, WM_COMMAND, 1003, 0));
}

TEST_F(ObXDlgTest, HasDefaultsThatLeaveMessagesToTheSystem) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    LRESULT result = 7;
    EXPECT_FALSE(dialog.OnNotify(1, nullptr, result));
    EXPECT_EQ(0, result);
    EXPECT_TRUE(dialog.OnHelp());
    EXPECT_TRUE(dialog.OnContextMenu(0, 0));
    EXPECT_FALSE(dialog.OnClose());
    EXPECT_FALSE(dialog.OnCommand(1003, 0));
    EXPECT_EQ(0xFFFFFFFF, dialog.GetListItemColor(1, 2, 3, 4));
    EXPECT_EQ(0, dialog.OnOtherMessage(WM_APP, 0, 0));
    EXPECT_EQ(nullptr, dialog.OnCtlColorDlg());
    EXPECT_EQ(nullptr, dialog.OnCtlColorStatic(dialog.GetItem(1001, true), nullptr));
}

TEST_F(ObXDlgTest, StartsWithTheFieldsOfItsConstructor) {
    const ObXDlg dialog(OB_TEST_PLAIN, GetDesktopWindow(), 99, true);
    EXPECT_EQ(nullptr, dialog.window);
    EXPECT_EQ(GetDesktopWindow(), dialog.parentWindow);
    EXPECT_EQ(OB_TEST_PLAIN, dialog.templateId);
    EXPECT_EQ(99u, dialog.helpId);
    EXPECT_TRUE(dialog.centerOnOpen);
    EXPECT_FALSE(dialog.isFlat || dialog.isModeless || dialog.keepHiddenParent ||
                 dialog.inInitDialog);
    EXPECT_EQ(0xFFFFFFu, dialog.backgroundColor);
    EXPECT_TRUE(ObLibX::ObXFlatDlg(OB_TEST_PLAIN, nullptr, 0, false).isFlat);
}

// Ends itself as soon as it is open; remembers whose it was.
class EndingDialog : public ObXDlg {
public:
    EndingDialog(HWND parent, int command)
        : ObXDlg(OB_TEST_PLAIN, parent, 0, false), command_(command) {}
    bool OnInitDialog() override {
        wasInInit = inInitDialog;
        const bool result = ObXDlg::OnInitDialog();
        owner = GetWindow(window, GW_OWNER);
        PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(command_), 0);
        return result;
    }
    HWND owner = nullptr;
    bool wasInInit = false;

private:
    int command_;
};

TEST_F(ObXDlgTest, EndsWith1ForOkAnd2ForCancel) {
    for (const int command : {1, 2}) {
        EndingDialog dialog(nullptr, command);
        EXPECT_EQ(command, dialog.DoModal());
        EXPECT_EQ(nullptr, dialog.window);
        EXPECT_TRUE(dialog.wasInInit);
        EXPECT_FALSE(dialog.inInitDialog);
    }
}

// Is asked for more in the moment between its end and that of its window.
class LateDialog : public EndingDialog {
public:
    LateDialog() : EndingDialog(nullptr, 1) {}
    bool OnOK() override {
        const HWND ended = window;
        EndingDialog::OnOK();
        hasEnded_ = true;
        HELPINFO help{};
        help.cbSize = sizeof help;
        NMHDR header{nullptr, 5, static_cast<UINT>(-205)};
        SendMessageW(ended, WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
        SendMessageW(ended, WM_NOTIFY, 5, reinterpret_cast<LPARAM>(&header));
        for (const UINT message : {WM_COMMAND, WM_CONTEXTMENU, WM_CLOSE, WM_TIMER, WM_MOUSEWHEEL,
                                   WM_HSCROLL, WM_VSCROLL}) {
            SendMessageW(ended, message, 2, 0);
        }
        return true;
    }
    bool OnCancel() override { return Note(L"OnCancel"); }
    bool OnHelp() override { return Note(L"OnHelp"); }
    bool OnContextMenu(WPARAM, LPARAM) override { return Note(L"OnContextMenu"); }
    bool OnClose() override { return Note(L"OnClose"); }
    bool OnTimer(UINT_PTR) override { return Note(L"OnTimer"); }
    bool OnDestroy() override {
        isDestroyed = true;
        return EndingDialog::OnDestroy();
    }
    LRESULT OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_MOUSEWHEEL || message == WM_HSCROLL || message == WM_VSCROLL) {
            Note(L"OnOtherMessage " + std::to_wstring(message));
        }
        return EndingDialog::OnOtherMessage(message, wParam, lParam);
    }
    Calls late; // handlers that ran after the end
    bool isDestroyed = false;

private:
    bool Note(const std::wstring& call) {
        if (hasEnded_) late.push_back(call);
        return true;
    }
    bool hasEnded_ = false;
};

TEST_F(ObXDlgTest, IsAskedForNothingAfterItsEndButHearsThatItsWindowGoes) {
    LateDialog dialog;
    EXPECT_EQ(1, dialog.DoModal());
    EXPECT_EQ(Calls(), dialog.late);
    EXPECT_TRUE(dialog.isDestroyed);
}

// A modal dialog whose owner goes while it is open.
class OrphanDialog : public ObXDlg {
public:
    explicit OrphanDialog(HWND owner) : ObXDlg(OB_TEST_PLAIN, owner, 0, false) {
        keepHiddenParent = true;
    }
    bool OnInitDialog() override {
        PostMessageW(window, WM_APP, 0, 0);
        return ObXDlg::OnInitDialog();
    }
    LRESULT OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_APP) DestroyWindow(parentWindow);
        return ObXDlg::OnOtherMessage(message, wParam, lParam);
    }
};

TEST_F(ObXDlgTest, EndsWithoutAResultWhenItsOwnerGoes) {
    const HWND owner = CreateWindowExW(0, L"static", L"", WS_POPUP, 0, 0, 100, 100, nullptr,
                                       nullptr, nullptr, nullptr);
    OrphanDialog dialog(owner);
    EXPECT_EQ(0, dialog.DoModal());
    EXPECT_EQ(nullptr, dialog.window);
    EXPECT_FALSE(IsWindow(owner));
}

// Deletes itself at its first notification.
class DeletedByNotification : public RecordingDialog {
public:
    DeletedByNotification() : RecordingDialog(OB_TEST_PLAIN) { Open(); }
    bool OnNotify(int, NMHDR*, LRESULT& result) override {
        result = 5;
        onNotify();
        return true;
    }
    bool OnCommandId(int, int, HWND) override {
        onNotify();
        return true;
    }
    std::function<void()> onNotify;
};

TEST_F(ObXDlgTest, MayBeDeletedInANotification) {
    for (const UINT message : {WM_NOTIFY, WM_COMMAND}) {
        DeletedAtOnce<DeletedByNotification> dialog;
        const HWND window = dialog->window;
        dialog->onNotify = [&] { dialog.Delete(); };
        NMHDR header{nullptr, 1003, 100};
        SendMessageW(window, message, 1003, reinterpret_cast<LPARAM>(&header));
        EXPECT_TRUE(dialog.IsDeleted()) << message;
        EXPECT_FALSE(IsWindow(window)) << message;
    }
}

// In place of the system's call, whose result Wine cuts to 32 bits.
INT_PTR modalResult = 0;
INT_PTR WINAPI ModalResult(HINSTANCE, LPCDLGTEMPLATEW, HWND, DLGPROC, LPARAM) {
    return modalResult;
}

INT_PTR ResultFor(INT_PTR result) {
    const obtest::ImportPatch<decltype(&DialogBoxIndirectParamW)> patch(
        "user32.dll", "DialogBoxIndirectParamW", &ModalResult);
    EXPECT_TRUE(patch.Ok());
    modalResult = result;
    return ObXDlg(OB_TEST_PLAIN, nullptr, 0, false).DoModal();
}

TEST_F(ObXDlgTest, HasAResultOf32Bits) {
    EXPECT_EQ(-77, ResultFor(-77));
    EXPECT_EQ(0x7FFFFFFF, ResultFor(0x7FFFFFFF));
    EXPECT_FATAL(ResultFor(INT_PTR{1} << 32), "ObMacro");
    EXPECT_FATAL(ResultFor(-1), "ObLibX\\src\\ObXDlg.cpp");
}

class ThrowingDialog : public EndingDialog {
public:
    ThrowingDialog() : EndingDialog(nullptr, 2) {}
    bool OnInitDialog() override {
        EndingDialog::OnInitDialog();
        throw std::runtime_error("in the middle of opening");
    }
};

TEST_F(ObXDlgTest, IsNoLongerOpeningAfterAnException) {
    ThrowingDialog dialog;
    EXPECT_EQ(2, dialog.DoModal());
    EXPECT_TRUE(dialog.wasInInit);
    EXPECT_FALSE(dialog.inInitDialog);
}

class HalfFilledDialog : public ObXDlg {
public:
    HalfFilledDialog() : ObXDlg(OB_TEST_PLAIN, nullptr, 0, false) {}
    bool OnInitDialog() override {
        // Comes only if the dialog stays open.
        PostMessageW(window, WM_COMMAND, IDOK, 0);
        throw std::bad_alloc();
    }
};

TEST_F(ObXDlgTest, EndsAsACancelWhenItCannotBeFilled) {
    EXPECT_EQ(IDCANCEL, HalfFilledDialog().DoModal());
}

TEST_F(ObXDlgTest, EndsAnObjectOfItsOwn) {
    const HPEN pen = CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
    {
        ObXDlg dialog(OB_TEST_PLAIN, nullptr, 0, false);
        dialog.extraObject.Reset(pen);
        EXPECT_EQ(static_cast<DWORD>(OBJ_PEN), GetObjectType(pen));
    }
    EXPECT_EQ(0u, GetObjectType(pen));
}

TEST_F(ObXDlgTest, HasItsParentAsOwnerWhileThatIsVisible) {
    const ObLib::UniqueWindow parent(CreateWindowExW(0, L"static", L"", WS_POPUP, 0, 0, 100, 100,
                                                     nullptr, nullptr, nullptr, nullptr));
    EndingDialog hidden(parent.Get(), 1);
    hidden.DoModal();
    EXPECT_EQ(nullptr, hidden.owner);
    EndingDialog kept(parent.Get(), 1);
    kept.keepHiddenParent = true;
    kept.DoModal();
    EXPECT_EQ(parent.Get(), kept.owner);
    ShowWindow(parent.Get(), SW_SHOWNA);
    EndingDialog shown(parent.Get(), 1);
    shown.DoModal();
    EXPECT_EQ(parent.Get(), shown.owner);
}

TEST_F(ObXDlgTest, DestroysAModelessWindowForOkAndCancel) {
    for (const WPARAM command : {1, 2}) {
        RecordingDialog dialog(OB_TEST_PLAIN);
        const HWND window = dialog.Open().window;
        EXPECT_TRUE(dialog.isModeless);
        dialog.Send(WM_COMMAND, command);
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(nullptr, dialog.window);
    }
}

TEST_F(ObXDlgTest, KnowsWhenItsWindowIsDestroyed) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    DestroyWindow(dialog.Open().window);
    EXPECT_EQ(nullptr, dialog.window);
}

TEST_F(ObXDlgTest, EndsTheProcessForMistakesOfTheProgram) {
    const char* const source = "ObLibX\\src\\ObXDlg.cpp";
    EXPECT_FATAL(ObXDlg(4242, nullptr, 0, false).DoModal(), source);
    EXPECT_FATAL(ObXDlg(4242, nullptr, 0, false).Create(nullptr), source);
    EXPECT_FATAL(RecordingDialog(OB_TEST_PLAIN).Open().Create(nullptr), source);
    EXPECT_FATAL(RecordingDialog(OB_TEST_PLAIN).OnOK(), source);
    EXPECT_FATAL(RecordingDialog(OB_TEST_PLAIN).OnCancel(), source);
    EXPECT_FATAL(RecordingDialog(OB_TEST_PLAIN).OnHelp(), source);
    EXPECT_FATAL(RecordingDialog(OB_TEST_PLAIN).OnInitDialog(), source);
    EXPECT_FATAL(static_cast<void>(RecordingDialog(OB_TEST_PLAIN).GetItem(1, false)), source);
    EXPECT_FATAL(static_cast<void>(RecordingDialog(OB_TEST_PLAIN).Open().GetItem(4242, true)),
                 source);
}

TEST_F(ObXDlgTest, FindsItsItems) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    EXPECT_EQ(GetDlgItem(dialog.window, 1001), dialog.GetItem(1001, true));
    EXPECT_EQ(nullptr, dialog.GetItem(4242, false));
    EXPECT_EQ(nullptr, dialog.GetControl(1001));
}

TEST_F(ObXDlgTest, GivesItsEditsABorderUnlessItIsFlat) {
    RecordingDialog plain(OB_TEST_PLAIN);
    plain.Open();
    EXPECT_NE(0, GetWindowLongPtrW(plain.GetItem(1002, true), GWL_STYLE) & WS_BORDER);
    RecordingDialog flat(OB_TEST_PLAIN);
    flat.isFlat = true;
    flat.Open();
    EXPECT_EQ(0, GetWindowLongPtrW(flat.GetItem(1002, true), GWL_STYLE) & WS_BORDER);
}

TEST_F(ObXDlgTest, HasABrushOfItsBackgroundWhileItIsFlat) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.isFlat = true;
    dialog.Open();
    LOGBRUSH brush{};
    for (const COLORREF color : {0xFFFFFFu, 0x123456u, 0xFFFFFFu}) {
        dialog.backgroundColor = color;
        GetObjectW(dialog.OnCtlColorDlg(), sizeof brush, &brush);
        EXPECT_EQ(color, brush.lbColor);
    }
    EXPECT_EQ(dialog.OnCtlColorDlg(), dialog.OnCtlColorDlg());
    const HDC dc = GetDC(dialog.window);
    SetBkMode(dc, OPAQUE);
    EXPECT_EQ(GetStockObject(NULL_BRUSH), dialog.OnCtlColorStatic(dialog.GetItem(1001, true), dc));
    EXPECT_EQ(TRANSPARENT, GetBkMode(dc));
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), GetTextColor(dc));
    EXPECT_EQ(nullptr, dialog.OnCtlColorBtn(dialog.GetItem(1003, true), dc));
    ReleaseDC(dialog.window, dc);
}

TEST_F(ObXDlgTest, HasTheSystemsBackgroundInHighContrast) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.isFlat = true;
    dialog.Open();
    EXPECT_NE(nullptr, dialog.OnCtlColorDlg());
    const obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch(
        "user32.dll", "SystemParametersInfoW", &obtest::ParametersWithContrast);
    ASSERT_TRUE(patch.Ok());
    obtest::isContrastOn = true;
    EXPECT_EQ(nullptr, dialog.OnCtlColorDlg());
    obtest::isContrastOn = false;
}

TEST_F(ObXDlgTest, IsCentredOnItsOwnerOnlyWhenThatIsWanted) {
    const ObLib::UniqueWindow parent(CreateWindowExW(WS_EX_TOOLWINDOW, L"static", L"", WS_POPUP,
                                                     300, 300, 500, 400, nullptr, nullptr, nullptr,
                                                     nullptr));
    ShowWindow(parent.Get(), SW_SHOWNA);
    SetCursorPos(5, 5);
    RecordingDialog centred(OB_TEST_PLAIN, parent.Get(), 0, true);
    centred.Create(parent.Get());
    RECT place{};
    GetWindowRect(centred.window, &place);
    EXPECT_NEAR(550, (place.left + place.right) / 2, 1);
    EXPECT_NEAR(500, (place.top + place.bottom) / 2, 1);
    RecordingDialog other(OB_TEST_PLAIN, parent.Get(), 0, false);
    other.Create(parent.Get());
    RECT elsewhere{};
    GetWindowRect(other.window, &elsewhere);
    EXPECT_NE(place.left, elsewhere.left);
}

TEST_F(ObXDlgTest, IsModalAfterItWasModeless) {
    EndingDialog dialog(nullptr, 1);
    dialog.Create(nullptr);
    DestroyWindow(dialog.window);
    EXPECT_EQ(1, dialog.DoModal());
    EXPECT_FALSE(dialog.isModeless);
}

TEST_F(ObXDlgTest, TakesItsWindowAlong) {
    HWND window = nullptr;
    {
        ObXDlg dialog(OB_TEST_PLAIN, nullptr, 0, false);
        dialog.Create(nullptr);
        window = dialog.window;
        EXPECT_TRUE(IsWindow(window));
    }
    EXPECT_FALSE(IsWindow(window));
}

// Looks for its list whenever that notifies.
class ListDialog : public EndingDialog {
public:
    ListDialog() : EndingDialog(nullptr, 1) { templateId = OB_TEST_LIST; }
    bool OnInitDialog() override {
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.pszText = const_cast<wchar_t*>(L"Item");
        SendMessageW(GetItem(3001, true), LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return EndingDialog::OnInitDialog();
    }
    bool OnNotify(int, NMHDR*, LRESULT&) override {
        ++notified;
        static_cast<void>(GetItem(3001, true));
        return false;
    }
    int notified = 0;
};

TEST_F(ObXDlgTest, HearsNoNotificationsOfControlsThatEndAfterIt) {
    ListDialog dialog;
    EXPECT_EQ(1, dialog.DoModal());
    EXPECT_LT(0, dialog.notified);
}

class OwnedLate : public EndingDialog {
public:
    explicit OwnedLate(HWND owner) : EndingDialog(nullptr, 1), wanted_(owner) {}
    void OnPreCreate() override { parentWindow = wanted_; }

private:
    HWND wanted_;
};

TEST_F(ObXDlgTest, MayChooseItsOwnerBeforeItIsMade) {
    const ObLib::UniqueWindow parent(CreateWindowExW(0, L"static", L"", WS_POPUP | WS_VISIBLE, 0, 0,
                                                     100, 100, nullptr, nullptr, nullptr, nullptr));
    OwnedLate dialog(parent.Get());
    dialog.DoModal();
    EXPECT_EQ(parent.Get(), dialog.owner);
}

} // namespace

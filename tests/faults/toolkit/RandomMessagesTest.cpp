// Ten thousand messages in any order to a control of each class: it stays, and nothing is left of
// it. The seed is printed; OB_SEED chooses another one, and OB_CONTROL a single control by its id.
#include <commctrl.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>

#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/ObCustPassword.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/FlatDressing.h"
#include "tests/faults/toolkit/ToolkitSuite.h"

namespace obtest {
namespace {

constexpr int kMessages = 10'000;
// Before it is counted what there is: the system keeps objects from the first use of its controls.
constexpr int kFirstMessages = 2'000;
constexpr int kPassword = 1002; // these two in the template
constexpr int kDatePicker = 1029;
constexpr unsigned kSeed = 20261123;
// Edit, password, text, bar, slider, progress bar, three combo boxes, spin, date picker, six push
// buttons, check box, radio and switch.
constexpr std::size_t kLeastClasses = 20;

unsigned Seed() {
    const wchar_t* const asked = _wgetenv(L"OB_SEED");
    return asked != nullptr ? static_cast<unsigned>(_wtoi(asked)) : kSeed;
}

bool IsAskedFor(int id) {
    const wchar_t* const asked = _wgetenv(L"OB_CONTROL");
    return asked == nullptr || _wtoi(asked) == id;
}

// Chooses arguments that are valid for the window.
class Choices {
public:
    Choices(unsigned seed, HWND window) : random_(seed), window_(window) {}

    HWND Window() const { return window_; }
    int Between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }
    bool Flag() { return Between(0, 1) != 0; }
    // Inside the window, or near it.
    LPARAM Point() {
        RECT client{};
        GetClientRect(window_, &client);
        return MAKELPARAM(Between(-3, client.right + 3), Between(-3, client.bottom + 3));
    }
    const wchar_t* Text() {
        text_.assign(static_cast<std::size_t>(Between(0, 60)), L'w');
        for (wchar_t& unit : text_) unit = static_cast<wchar_t>(Between(L' ', L'~'));
        return text_.c_str();
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window_, message, wParam, lParam);
    }

private:
    std::mt19937 random_;
    HWND window_;
    std::wstring text_;
};

void Paint(Choices& choices) {
    InvalidateRect(choices.Window(), nullptr, choices.Flag());
    UpdateWindow(choices.Window());
}

void PrintInto(Choices& choices) {
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ObLib::UniqueBitmap bitmap(CreateBitmap(300, 100, 1, 32, nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    choices.Send(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc.Get()), PRF_CLIENT);
    SelectObject(dc.Get(), old);
}

void Size(Choices& choices) {
    SetWindowPos(choices.Window(), nullptr, choices.Between(-5, 200), choices.Between(-5, 200),
                 choices.Between(0, 300), choices.Between(0, 100), SWP_NOZORDER | SWP_NOACTIVATE);
}

void Key(Choices& choices) {
    constexpr int kKeys[] = {VK_LEFT, VK_RIGHT, VK_UP,  VK_DOWN, VK_HOME, VK_END, VK_PRIOR,
                             VK_NEXT, VK_SPACE, VK_TAB, VK_BACK, VK_F8,   'A',    VK_DELETE};
    const auto key = static_cast<WPARAM>(kKeys[choices.Between(0, std::size(kKeys) - 1)]);
    choices.Send(WM_KEYDOWN, key);
    if (choices.Flag()) choices.Send(WM_KEYUP, key);
}

void Wheel(Choices& choices) {
    choices.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, 120 * choices.Between(-2, 2)), choices.Point());
}

void Bar(Choices& choices) {
    SCROLLINFO info{sizeof info,
                    SIF_ALL,
                    choices.Between(-5, 5),
                    choices.Between(-5, 200),
                    static_cast<UINT>(choices.Between(0, 60)),
                    choices.Between(-10, 210),
                    0};
    choices.Send(SBM_SETSCROLLINFO, static_cast<WPARAM>(choices.Flag()),
                 reinterpret_cast<LPARAM>(&info));
}

void SendToBar(Choices& choices) {
    const auto redraw = static_cast<WPARAM>(choices.Flag());
    const int low = choices.Between(-100, 100);
    const int high = choices.Between(-100, 300);
    switch (choices.Between(0, 9)) {
    case 0:
        choices.Send(TBM_SETPOS, redraw, low);
        break;
    case 1:
        choices.Send(TBM_SETRANGE, redraw, MAKELPARAM(low, high));
        break;
    case 2:
        choices.Send(TBM_SETRANGEMIN, redraw, low);
        break;
    case 3:
        choices.Send(TBM_SETRANGEMAX, redraw, high);
        break;
    case 4:
        choices.Send(TBM_SETPAGESIZE, 0, low);
        break;
    case 5:
        choices.Send(SBM_SETPOS, static_cast<WPARAM>(low), choices.Flag());
        break;
    case 6:
        choices.Send(SBM_SETRANGE, static_cast<WPARAM>(low), high);
        break;
    case 7:
        choices.Send(SBM_SETRANGEREDRAW, static_cast<WPARAM>(low), high);
        break;
    case 8:
        choices.Send(SBM_ENABLE_ARROWS, static_cast<WPARAM>(choices.Between(0, 3)));
        break;
    default:
        choices.Send(TBM_GETPOS);
    }
}

void SendToCombo(Choices& choices) {
    const auto item = static_cast<WPARAM>(choices.Between(-1, 5));
    switch (choices.Between(0, 8)) {
    case 0:
        choices.Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choices.Text()));
        break;
    case 1:
        choices.Send(CB_DELETESTRING, item);
        break;
    case 2:
    case 3:
        choices.Send(CB_SETCURSEL, item);
        break;
    case 4:
        choices.Send(CB_RESETCONTENT);
        break;
    case 5:
    case 6:
        choices.Send(CB_SHOWDROPDOWN, static_cast<WPARAM>(choices.Flag()));
        break;
    case 7:
        choices.Send(CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), choices.Between(10, 40));
        break;
    default:
        choices.Send(CB_SETDROPPEDWIDTH, static_cast<WPARAM>(choices.Between(10, 400)));
    }
}

void SendToProgress(Choices& choices) {
    switch (choices.Between(0, 6)) {
    case 0:
        choices.Send(PBM_SETPOS, static_cast<WPARAM>(choices.Between(-20, 200)));
        break;
    case 1:
        choices.Send(PBM_SETRANGE32, static_cast<WPARAM>(choices.Between(-5, 5)),
                     choices.Between(-5, 200));
        break;
    case 2:
        choices.Send(PBM_SETSTATE, static_cast<WPARAM>(choices.Between(1, 3)));
        break;
    case 3:
        choices.Send(PBM_SETBARCOLOR, 0, choices.Between(0, 0xFFFFFF));
        break;
    case 4:
        choices.Send(PBM_SETMARQUEE, static_cast<WPARAM>(choices.Flag()));
        break;
    case 5:
        SetWindowLongPtrW(choices.Window(), GWL_STYLE,
                          GetWindowLongPtrW(choices.Window(), GWL_STYLE) ^ PBS_MARQUEE);
        break;
    default:
        choices.Send(PBM_DELTAPOS, static_cast<WPARAM>(choices.Between(-20, 20)));
    }
}

void SendToSpin(Choices& choices) {
    if (choices.Flag()) {
        choices.Send(UDM_SETPOS32, 0, choices.Between(-20, 200));
    } else {
        choices.Send(UDM_SETRANGE32, static_cast<WPARAM>(choices.Between(-50, 50)),
                     choices.Between(-50, 200));
    }
}

// Any timer, or that of a held press and of a marquee.
void Tick(Choices& choices) {
    const auto other = static_cast<WPARAM>(choices.Between(0, 9));
    choices.Send(WM_TIMER, choices.Flag() ? WPARAM{ObLibX::kScrollRepeatTimer} : other);
}

// ---- Lists, whose messages have other meanings elsewhere

constexpr int kMostRows = 40;

void InsertListRow(Choices& choices) {
    if (choices.Send(LVM_GETITEMCOUNT) >= kMostRows) choices.Send(LVM_DELETEALLITEMS);
    LVITEMW item{};
    item.mask = LVIF_TEXT | (choices.Flag() ? LVIF_STATE : 0);
    item.iItem = choices.Between(0, kMostRows);
    item.pszText = const_cast<wchar_t*>(choices.Text());
    item.state = INDEXTOSTATEIMAGEMASK(choices.Between(0, 2));
    item.stateMask = LVIS_STATEIMAGEMASK;
    choices.Send(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

void SetListState(Choices& choices) {
    LVITEMW item{};
    item.state = static_cast<UINT>(choices.Between(0, 3)) |
                 static_cast<UINT>(INDEXTOSTATEIMAGEMASK(choices.Between(0, 2)));
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED | LVIS_STATEIMAGEMASK;
    choices.Send(LVM_SETITEMSTATE, static_cast<WPARAM>(choices.Between(-1, kMostRows)),
                 reinterpret_cast<LPARAM>(&item));
}

void SetListCell(Choices& choices) {
    LVITEMW item{};
    item.iSubItem = choices.Between(0, 2);
    item.pszText = const_cast<wchar_t*>(choices.Text());
    choices.Send(LVM_SETITEMTEXTW, static_cast<WPARAM>(choices.Between(0, kMostRows)),
                 reinterpret_cast<LPARAM>(&item));
}

// Whoever sets images gets the ones from before to destroy.
void SetListImages(Choices& choices) {
    const int size = choices.Between(8, 32);
    const HIMAGELIST images =
        choices.Flag() ? ImageList_Create(size, size, ILC_COLOR32, 1, 1) : nullptr;
    const ObLib::UniqueImageList before(reinterpret_cast<HIMAGELIST>(
        choices.Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images))));
}

struct ListRow {
    void (*send)(Choices& choices);
};
constexpr ListRow kListRows[] = {
    {&InsertListRow},
    {&InsertListRow},
    {&SetListState},
    {&SetListCell},
    {&SetListImages},
    {[](Choices& c) { c.Send(LVM_DELETEITEM, static_cast<WPARAM>(c.Between(0, kMostRows))); }},
    {[](Choices& c) {
        c.Send(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, c.Flag() ? LVS_EX_CHECKBOXES : 0);
    }},
    {[](Choices& c) { c.Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, c.Between(0, 0x7F)); }},
    {[](Choices& c) { c.Send(LVM_ENABLEGROUPVIEW, static_cast<WPARAM>(c.Flag())); }},
    {[](Choices& c) {
        c.Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(c.Between(0, 2)), c.Between(0, 300));
    }},
    {[](Choices& c) {
        c.Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(c.Between(0, kMostRows)), c.Flag());
    }},
    {[](Choices& c) {
        c.Send(WM_VSCROLL, static_cast<WPARAM>(c.Between(SB_LINEUP, SB_PAGEDOWN)));
    }},
    {[](Choices& c) {
        c.Send(WM_HSCROLL, static_cast<WPARAM>(c.Between(SB_LINEUP, SB_PAGEDOWN)));
    }},
};

void ListMessage(Choices& choices) {
    kListRows[choices.Between(0, static_cast<int>(std::size(kListRows)) - 1)].send(choices);
}

struct Row {
    const char* name;
    void (*send)(Choices& choices);
    const wchar_t* className = nullptr; // of the windows that get it; null: of any class
};

// Left out: the right mouse button and the context menu, which wait for a user.
constexpr Row kRows[] = {
    {"paint", &Paint},
    {"print", &PrintInto},
    {"size", &Size},
    {"key", &Key},
    {"wheel", &Wheel},
    {"scroll info", &Bar},
    {"mouse move", [](Choices& c) { c.Send(WM_MOUSEMOVE, 0, c.Point()); }},
    {"mouse down", [](Choices& c) { c.Send(WM_LBUTTONDOWN, MK_LBUTTON, c.Point()); }},
    {"mouse up", [](Choices& c) { c.Send(WM_LBUTTONUP, 0, c.Point()); }},
    {"double click", [](Choices& c) { c.Send(WM_LBUTTONDBLCLK, MK_LBUTTON, c.Point()); }},
    {"mouse leave", [](Choices& c) { c.Send(WM_MOUSELEAVE); }},
    {"drag", [](Choices& c) { c.Send(WM_MOUSEMOVE, MK_LBUTTON, c.Point()); }},
    {"capture", [](Choices& c) { c.Send(WM_CAPTURECHANGED); }},
    {"cancel", [](Choices& c) { c.Send(WM_CANCELMODE); }},
    {"character", [](Choices& c) { c.Send(WM_CHAR, static_cast<WPARAM>(c.Between(' ', '~'))); }},
    {"focus", [](Choices& c) { SetFocus(c.Flag() ? c.Window() : GetParent(c.Window())); }},
    {"enable", [](Choices& c) { EnableWindow(c.Window(), c.Flag()); }},
    {"show", [](Choices& c) { ShowWindow(c.Window(), c.Flag() ? SW_SHOWNA : SW_HIDE); }},
    {"text", [](Choices& c) { SetWindowTextW(c.Window(), c.Text()); }},
    {"select", [](Choices& c) { c.Send(EM_SETSEL, static_cast<WPARAM>(c.Between(0, 9)), -1); }},
    {"read only", [](Choices& c) { c.Send(EM_SETREADONLY, static_cast<WPARAM>(c.Flag())); }},
    {"check", [](Choices& c) { c.Send(BM_SETCHECK, static_cast<WPARAM>(c.Between(0, 2))); }},
    {"state", [](Choices& c) { c.Send(BM_SETSTATE, static_cast<WPARAM>(c.Flag())); }},
    {"click", [](Choices& c) { c.Send(BM_CLICK); }},
    {"cues",
     [](Choices& c) {
         c.Send(WM_UPDATEUISTATE, MAKEWPARAM(c.Between(UIS_SET, UIS_CLEAR), c.Between(0, 3)));
     }},
    {"colours", [](Choices& c) { c.Send(WM_SYSCOLORCHANGE); }},
    {"theme", [](Choices& c) { c.Send(WM_THEMECHANGED); }},
    {"redraw", [](Choices& c) { c.Send(WM_SETREDRAW, static_cast<WPARAM>(c.Flag())); }},
    {"dialog code", [](Choices& c) { c.Send(WM_GETDLGCODE); }},
    {"timer", &Tick},
    {"object", [](Choices& c) { TakeObjectOf(c.Window()); }},
    {"posted", [](Choices&) { PumpPosted(); }},
    // To a window of another class these may be pointers.
    {"bar", &SendToBar, L"Static"},
    {"combo box", &SendToCombo, L"ComboBox"},
    {"progress bar", &SendToProgress, PROGRESS_CLASSW},
    {"spin control", &SendToSpin, UPDOWN_CLASSW},
    {"list", &ListMessage, WC_LISTVIEWW},
    {"list again", &ListMessage, WC_LISTVIEWW},
};

// Besides these, for a window whose bars are hosted.
constexpr Row kHostRows[] = {
    {"scroll",
     [](Choices& c) {
         // To the end and the beginning, by lines and pages, to a place.
         c.Send(c.Flag() ? WM_VSCROLL : WM_HSCROLL,
                MAKEWPARAM(c.Between(SB_LINEUP, SB_ENDSCROLL), c.Between(0, 70)));
     }},
    {"frame",
     [](Choices& c) {
         SetWindowPos(c.Window(), nullptr, 0, 0, 0, 0,
                      SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
     }},
    {"rest", [](Choices& c) { c.Send(WM_MOUSEHOVER, 0, c.Point()); }},
    {"bars' timer", [](Choices& c) { c.Send(WM_TIMER, ObLibX::kHideBarsTimer); }},
};

// The rows that a window may get.
class Rows {
public:
    template <std::size_t Count>
    void Add(const Row (&rows)[Count], HWND window) {
        for (const Row& row : rows) {
            const bool isFor = row.className == nullptr || ObLibX::IsOfClass(window, row.className);
            if (isFor) rows_.push_back(&row);
        }
    }
    // Returns the name of what was sent.
    const char* SendOne(Choices& choices) const {
        const auto last = static_cast<int>(rows_.size()) - 1;
        const Row& row = *rows_[static_cast<std::size_t>(choices.Between(0, last))];
        row.send(choices);
        return row.name;
    }

private:
    std::vector<const Row*> rows_;
};

enum class Kind { Button, Field, Other };

// Of a control's window.
Kind KindOf(HWND window) {
    const struct {
        const wchar_t* className;
        Kind kind;
    } rows[] = {{L"Button", Kind::Button},
                {L"Edit", Kind::Field},
                {L"ComboBox", Kind::Field},
                {UPDOWN_CLASSW, Kind::Field},
                {DATETIMEPICK_CLASSW, Kind::Field}};
    for (const auto& row : rows) {
        if (ObLibX::IsOfClass(window, row.className)) return row.kind;
    }
    return Kind::Other;
}

// A window with the messages that it gets.
struct Target {
    Choices choices;
    Rows rows;

    Target(unsigned seed, HWND window) : choices(seed, window) { rows.Add(kRows, window); }
    const char* SendOne() { return rows.SendOne(choices); }
};

class RandomMessages : public ToolkitSuite {
protected:
    static void SetUpTestSuite() {
        printf("seed %u; OB_SEED=%u repeats this run\n", Seed(), Seed());
    }

    // Hidden, the others take no time to paint themselves whenever this one moves.
    static void HideAllBut(int id, EveryControlDialog& dialog) {
        for (const auto& [other, control] : dialog.Controls()) {
            if (other != id) ShowWindow(control->window, SW_HIDE);
        }
    }

    // To the host and its two bars in turn, whose mode changes meanwhile. True when all windows
    // are still there.
    static bool PlayHost(int messages) {
        EveryControlDialog dialog;
        dialog.Open();
        HideAllBut(0, dialog);
        const HWND windows[] = {dialog.hosted,
                                dialog.bars.Holder(ObLibX::HolderKind::Vertical).Bar()->window,
                                dialog.bars.Holder(ObLibX::HolderKind::Horizontal).Bar()->window};
        std::vector<Target> targets;
        for (const HWND window : windows) {
            targets.emplace_back(Seed(), window).rows.Add(kHostRows, window);
        }
        for (int left = messages; left > 0; --left) {
            Choices& first = targets[0].choices;
            targets[static_cast<std::size_t>(first.Between(0, 2))].SendOne();
            if (left % 100 == 0) dialog.bars.SetAutoHide(first.Flag());
        }
        return std::ranges::all_of(windows, [](HWND window) { return IsWindow(window) != FALSE; });
    }

    // A dialog whose control gets them all. True when the control's window is still there.
    static bool Play(int id, int messages) {
        HWND window = nullptr;
        const bool isWhole = PlayIn(id, messages, window);
        EXPECT_EQ(nullptr, GetCapture());
        EXPECT_FALSE(ObLibX::TheScrollRepeat().IsRunning(window));
        return isWhole;
    }
    static bool PlayIn(int id, int messages, HWND& window) {
        EveryControlDialog dialog;
        dialog.Open();
        HideAllBut(id, dialog);
        window = dialog.GetItem(id, true);
        Target target(Seed() + static_cast<unsigned>(id), window);
        for (int left = messages; left > 0; --left) target.SendOne();
        const ObLibX::ObCustomControl* const control = dialog.GetControl(id);
        return IsWindow(window) && control != nullptr && control->window == window;
    }

    // `play` gets a number of messages, and returns whether all is still there.
    template <class Play>
    static void ExpectNothingLeft(bool isCounted, Play play) {
        EXPECT_TRUE(play(kFirstMessages));
        PumpPosted();
        const ProcessResources before = ProcessResources::Now();
        EXPECT_TRUE(play(kMessages));
        PumpPosted();
        if (isCounted) ExpectNoMoreThan(before);
    }

    // Those of one kind, of which there are at least so many.
    static void PlayEach(Kind kind, std::size_t least) {
        std::vector<int> ids = OneOfEachClass();
        ASSERT_LE(kLeastClasses, ids.size());
        KeepOnly(kind, ids);
        ASSERT_LE(least, ids.size());
        for (const int id : ids) {
            if (!IsAskedFor(id)) continue;
            SCOPED_TRACE(id);
            printf("control %d\n", id); // the last one, where the process crashes
            fflush(stdout);
            ExpectNothingLeft(id != kDatePicker, [&](int messages) { return Play(id, messages); });
        }
        printf("%zu controls, %d messages each\n", ids.size(), kMessages);
    }

private:
    static void KeepOnly(Kind kind, std::vector<int>& ids) {
        EveryControlDialog dialog;
        dialog.Create(nullptr);
        std::erase_if(ids, [&](int id) { return KindOf(dialog.GetItem(id, true)) != kind; });
    }
};

// Several suites, which run side by side.
using RandomMessagesToButtons = RandomMessages;

TEST_F(RandomMessages, LeaveAHostAndItsBarsWhole) {
    ExpectNothingLeft(true, &PlayHost);
    EXPECT_EQ(nullptr, GetCapture());
}

// Texts, a link, bars, a slider, a progress bar and the list.
TEST_F(RandomMessages, LeaveEachControlWhole) { PlayEach(Kind::Other, 6); }

TEST_F(RandomMessagesToButtons, LeaveEachWhole) { PlayEach(Kind::Button, 9); }

// ---- Edits, and what has one

class RandomMessagesToFields : public RandomMessages {
protected:
    static ObLibX::PixelRect PlaceOf(HWND window) { return ObLibX::RectInParent(window); }
    static bool IsShown(HWND window) {
        return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
    }
    // The frame is around edit and eye, and the eye is in it, right of the edit.
    static void ExpectPlaces(const ObLibX::ObFlatPassword& edit) {
        const ObLibX::PixelRect inside = PlaceOf(edit.window);
        const ObLibX::PixelRect frame = PlaceOf(edit.frameWindow);
        const ObLibX::PixelRect eye = PlaceOf(edit.eyeButton);
        const int width = edit.frameWidth;
        EXPECT_EQ(inside.left - width, frame.left);
        EXPECT_EQ(inside.right, eye.left);
        EXPECT_EQ(eye.right + width, frame.right);
        EXPECT_EQ((std::pair{frame.top + width, frame.bottom - width}),
                  (std::pair{eye.top, eye.bottom}));
        EXPECT_LE(frame.top + width, inside.top);
        EXPECT_GE(frame.bottom - width, inside.bottom);
    }
    static void ExpectInPlace(const ObLibX::ObFlatPassword& edit) {
        ASSERT_TRUE(IsWindow(edit.window) && IsWindow(edit.frameWindow) &&
                    IsWindow(edit.eyeButton));
        ExpectPlaces(edit);
        const bool isEyeSeen = IsShown(edit.frameWindow) && IsWindowEnabled(edit.window);
        EXPECT_EQ(isEyeSeen, IsShown(edit.eyeButton));
        // A window that isn't to be redrawn has the style of a hidden one.
        if (IsShown(edit.window) || !isRedrawOff) {
            EXPECT_EQ(IsShown(edit.window), IsShown(edit.frameWindow));
        }
    }
    // As Windows' edit does; Wine's ignores WM_SETREDRAW.
    static LRESULT CALLBACK NoteRedraw(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR, DWORD_PTR) {
        if (message == WM_SETREDRAW) {
            isRedrawOff = wParam == FALSE;
            DefWindowProcW(window, message, wParam, lParam);
        }
        return DefSubclassProc(window, message, wParam, lParam);
    }
    // After each message eye and frame are where they belong. True when all of them were.
    static bool PlayPassword(int messages) {
        EveryControlDialog dialog;
        dialog.Open();
        HideAllBut(kPassword, dialog);
        auto& edit = dynamic_cast<ObLibX::ObFlatPassword&>(*dialog.GetControl(kPassword));
        isRedrawOff = false;
        SetWindowSubclass(edit.window, &NoteRedraw, 1, 0);
        Target target(Seed(), edit.window);
        for (int left = messages; left > 0 && !HasFailure(); --left) {
            SCOPED_TRACE(target.SendOne());
            ExpectInPlace(edit);
        }
        return !HasFailure();
    }

private:
    static inline bool isRedrawOff = false;
};

TEST_F(RandomMessagesToFields, LeaveEachWhole) { PlayEach(Kind::Field, 7); }

TEST_F(RandomMessagesToFields, LeaveAnEyeAndAFrameWhole) { ExpectNothingLeft(true, &PlayPassword); }

} // namespace
} // namespace obtest

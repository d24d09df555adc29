// The chooser as a window: what it looks like, the keyboard, what a screen reader gets, its end.
#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <cstring>
#include <optional>

#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/ComResources.h"
#include "tests/support/Allocations.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obcontract::ProviderProfile;
using obtest::Chooser;
using obtest::FakeModules;
using obtest::Lines;
using obtest::TextOf;

int IdOf(HWND window) { return window ? GetDlgCtrlID(window) : 0; }

LOGFONTW FontOf(HWND window) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font,
               &font);
    return font;
}

class SelectDefaultCloudDialog : public obtest::ChooserFixture {
protected:
    // Operates the chooser and then cancels it.
    void Use(const std::function<void(const Chooser&)>& use) {
        EXPECT_FALSE(Show([&use](const Chooser& chooser) {
            use(chooser);
            chooser.Cancel();
        }));
    }
    static bool MovesTo(const Chooser& chooser, WPARAM key, int id) {
        chooser.Type(key);
        return obtest::WaitUntil([&] { return IdOf(chooser.Focus()) == id; });
    }
};

TEST_F(SelectDefaultCloudDialog, ReturnsFalseAndKeepsTheJobsProviderWhenItIsCancelled) {
    OneProvider(L"Ann|ann");
    std::memset(&job_.SelectedStorageProvider, 0x11, sizeof job_.SelectedStorageProvider);
    const ProviderProfile before = job_.SelectedStorageProvider;
    Use([](const Chooser& chooser) { chooser.Tick(0); });
    EXPECT_EQ(std::memcmp(&before, &job_.SelectedStorageProvider, sizeof before), 0);
    EXPECT_TRUE(CallsOf({L"Login2", L"SetDefaultStorageProvider"}).empty());
}

TEST_F(SelectDefaultCloudDialog, IsCancelledByItsButtonByEscAndByItsCloseBox) {
    OneProvider(L"Ann|ann");
    const std::function<void(const Chooser&)> ways[] = {
        [](const Chooser& chooser) { chooser.Press(IDCANCEL); },
        [](const Chooser& chooser) { chooser.Type(VK_ESCAPE); },
        [](const Chooser& chooser) { PostMessageW(chooser.dialog, WM_CLOSE, 0, 0); }};
    for (const auto& way : ways) {
        EXPECT_FALSE(Show([&way](const Chooser& chooser) {
            chooser.Tick(0);
            way(chooser);
            EXPECT_TRUE(chooser.Closes());
        }));
    }
}

TEST_F(SelectDefaultCloudDialog, IsCancelledWithoutAProviderToo) {
    Use([](const Chooser& chooser) { EXPECT_TRUE(IsWindowEnabled(chooser.Item(IDCANCEL))); });
}

std::vector<INT_PTR> results;
decltype(&EndDialog) realEnd = nullptr;

BOOL WINAPI RecordEnd(HWND dialog, INT_PTR result) {
    results.push_back(result);
    return realEnd(dialog, result);
}

TEST_F(SelectDefaultCloudDialog, EndsWithOneAfterAChoiceAndWithTwoOtherwise) {
    const obtest::ImportPatch<decltype(&EndDialog)> patch{"user32.dll", "EndDialog", &RecordEnd};
    ASSERT_TRUE(patch.Ok());
    realEnd = patch.Real();
    results.clear();
    results.reserve(3); // no memory is allocated for the third
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    Use([](const Chooser& chooser) { chooser.Tick(0); });
    {
        const obtest::FailingAllocations failing({.succeeding = 0});
        EXPECT_FALSE(obcore::ShowSelectDefaultCloudDialog(owner_.Get(), job_));
    }
    EXPECT_EQ(results, (std::vector<INT_PTR>{1, 2, 2}));
}

TEST_F(SelectDefaultCloudDialog, CantBeShownOverAWindowThatHasGone) {
    EXPECT_FALSE(
        obcore::ShowSelectDefaultCloudDialog(reinterpret_cast<HWND>(INT_PTR{0x7FFE}), job_));
    EXPECT_TRUE(FakeModules::Calls().empty());
}

TEST_F(SelectDefaultCloudDialog, DisablesItsOwnerWhileItIsOpen) {
    Use([this](const Chooser& chooser) {
        EXPECT_EQ(GetWindow(chooser.dialog, GW_OWNER), owner_.Get());
        EXPECT_FALSE(IsWindowEnabled(owner_.Get()));
    });
    EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
}

TEST_F(SelectDefaultCloudDialog, KeepsTheJobInItsWindow) {
    Use([this](const Chooser& chooser) {
        EXPECT_EQ(GetWindowLongPtrW(chooser.dialog, DWLP_USER), reinterpret_cast<LONG_PTR>(&job_));
    });
}

// Looks.

void ExpectIcons(const Chooser& chooser, UINT dpi) {
    for (const auto& [kind, metric] :
         {std::pair(ICON_SMALL, SM_CXSMICON), std::pair(ICON_BIG, SM_CXICON)}) {
        const auto icon = reinterpret_cast<HICON>(
            SendMessageW(chooser.dialog, WM_GETICON, static_cast<WPARAM>(kind), 0));
        ASSERT_NE(icon, nullptr) << kind;
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(icon, &info));
        const ObLib::UniqueBitmap mask(info.hbmMask);
        const ObLib::UniqueBitmap colours(info.hbmColor);
        BITMAP picture{};
        GetObjectW(colours.Get(), sizeof picture, &picture);
        EXPECT_EQ(picture.bmWidth, GetSystemMetricsForDpi(metric, dpi)) << kind;
    }
}

TEST_F(SelectDefaultCloudDialog, HasTheProductsIconInBothSizes) {
    Use([](const Chooser& chooser) { ExpectIcons(chooser, 96); });
}

void ExpectHeadline(const Chooser& chooser) {
    const LOGFONTW own = FontOf(chooser.dialog);
    const LOGFONTW headline = FontOf(chooser.Item(OB_CHOOSER_HEADLINE));
    ASSERT_NE(own.lfHeight, 0);
    EXPECT_EQ(headline.lfHeight, own.lfHeight * 12 / 8);
    EXPECT_EQ(headline.lfWidth, own.lfWidth * 12 / 8);
    EXPECT_EQ(headline.lfWeight, 700);
    EXPECT_STREQ(headline.lfFaceName, own.lfFaceName);
}

TEST_F(SelectDefaultCloudDialog, ShowsTheHeadlineBoldAndHalfAsLargeAgain) { Use(&ExpectHeadline); }

HFONT WINAPI RefuseFont(const LOGFONTW*) { return nullptr; }

TEST_F(SelectDefaultCloudDialog, ShowsTheHeadlineInTheDialogsFontWhenNoOtherCanBeMade) {
    const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch{
        "gdi32.dll", "CreateFontIndirectW", &RefuseFont};
    ASSERT_TRUE(patch.Ok());
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        EXPECT_EQ(SendMessageW(chooser.Item(OB_CHOOSER_HEADLINE), WM_GETFONT, 0, 0),
                  SendMessageW(chooser.dialog, WM_GETFONT, 0, 0));
        chooser.Tick(0);
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_EQ(ChosenKey(), L"ann");
}

UINT scaleOfWindows = 96;

UINT WINAPI ScaleOf(HWND) { return scaleOfWindows; }

// The font of a dialog on another monitor; Wine's dialogs keep the one that they opened with.
HWND scaledDialog = nullptr;
HFONT scaledFont = nullptr;
decltype(&SendMessageW) realSend = nullptr;

LRESULT WINAPI SendToScaled(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_GETFONT && window == scaledDialog) {
        return reinterpret_cast<LRESULT>(scaledFont);
    }
    return realSend(window, message, wParam, lParam);
}

TEST_F(SelectDefaultCloudDialog, FollowsTheScaleOfTheMonitorItComesTo) {
    const obtest::ImportPatch<decltype(&GetDpiForWindow)> scale{"user32.dll", "GetDpiForWindow",
                                                                &ScaleOf};
    const obtest::ImportPatch<decltype(&SendMessageW)> send{"user32.dll", "SendMessageW",
                                                            &SendToScaled};
    ASSERT_TRUE(scale.Ok() && send.Ok());
    realSend = send.Real();
    OneProvider(L"Ann|ann");
    Use([](const Chooser& chooser) {
        LOGFONTW larger = FontOf(chooser.dialog);
        larger.lfHeight *= 2;
        const ObLib::UniqueFont font(CreateFontIndirectW(&larger));
        // What the system's dialog code does with the dialog and its controls.
        scaledFont = font.Get();
        scaledDialog = chooser.dialog;
        scaleOfWindows = 192;
        for (const int id : {OB_CHOOSER_HEADLINE, OB_CHOOSER_LIST}) {
            SendMessageW(chooser.Item(id), WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
        }
        ListView_SetColumnWidth(chooser.list, 0, 5);
        RECT place{};
        GetWindowRect(chooser.dialog, &place);
        SendMessageW(chooser.dialog, WM_DPICHANGED, MAKEWPARAM(192, 192),
                     reinterpret_cast<LPARAM>(&place));
        chooser.Settle();
        EXPECT_EQ(FontOf(chooser.dialog).lfHeight, larger.lfHeight);
        ExpectHeadline(chooser);
        ExpectIcons(chooser, 192);
        RECT room{};
        GetClientRect(chooser.list, &room);
        EXPECT_GE(ListView_GetColumnWidth(chooser.list, 0), room.right);
        scaleOfWindows = 96;
        scaledDialog = nullptr;
    });
}

TEST_F(SelectDefaultCloudDialog, ShowsTheHeadlineAloneInRedWithoutABackground) {
    Use([](const Chooser& chooser) {
        const HDC context = GetDC(chooser.dialog);
        const auto colour = [&](int id) {
            SetTextColor(context, 0);
            SetBkMode(context, OPAQUE);
            return reinterpret_cast<HGDIOBJ>(
                SendMessageW(chooser.dialog, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                             reinterpret_cast<LPARAM>(chooser.Item(id))));
        };
        EXPECT_EQ(colour(OB_CHOOSER_HEADLINE), GetStockObject(NULL_BRUSH));
        EXPECT_EQ(GetTextColor(context), 0x0000EAu);
        EXPECT_EQ(GetBkMode(context), TRANSPARENT);
        EXPECT_NE(colour(OB_CHOOSER_LABEL), GetStockObject(NULL_BRUSH));
        EXPECT_NE(GetTextColor(context), 0x0000EAu);
        ReleaseDC(chooser.dialog, context);
    });
}

TEST_F(SelectDefaultCloudDialog, DeletesItsFontAndItsIconsAtItsEnd) {
    HGDIOBJ font = nullptr;
    HICON icons[2] = {};
    Use([&](const Chooser& chooser) {
        font = reinterpret_cast<HGDIOBJ>(
            SendMessageW(chooser.Item(OB_CHOOSER_HEADLINE), WM_GETFONT, 0, 0));
        for (const int kind : {ICON_SMALL, ICON_BIG}) {
            icons[kind] = reinterpret_cast<HICON>(
                SendMessageW(chooser.dialog, WM_GETICON, static_cast<WPARAM>(kind), 0));
        }
        EXPECT_EQ(GetObjectType(font), OBJ_FONT);
    });
    EXPECT_EQ(GetObjectType(font), 0u);
    for (const HICON icon : icons) {
        ICONINFO info{};
        EXPECT_FALSE(GetIconInfo(icon, &info));
    }
}

TEST_F(SelectDefaultCloudDialog, ShowsWhereLinksAreSwitchedOffToAUserWithoutAnAccount) {
    const auto isShown = [](const Chooser& chooser) {
        return IsWindowVisible(chooser.Item(OB_CHOOSER_HINT)) != FALSE;
    };
    const auto listBottom = [](const Chooser& chooser) {
        RECT place{};
        GetWindowRect(chooser.list, &place);
        return place.bottom;
    };
    OneProvider(L"0");
    Use([&](const Chooser& chooser) {
        EXPECT_TRUE(isShown(chooser));
        const std::wstring hint = TextOf(chooser.Item(OB_CHOOSER_HINT));
        EXPECT_EQ(hint, obcore::LoadText(obcore::TextId::NoAccountHint));
        EXPECT_NE(hint.find(L"cloud settings"), std::wstring::npos);
        RECT place{};
        GetWindowRect(chooser.Item(OB_CHOOSER_HINT), &place);
        EXPECT_LT(listBottom(chooser), place.top);
    });
    Answer(L"provider7.GetAccountProfiles", L"Ann|ann");
    Use([&](const Chooser& chooser) { EXPECT_FALSE(isShown(chooser)); });
    Answer(L"provider7.GetAccountProfiles", L"-1");
    Use([&](const Chooser& chooser) { EXPECT_TRUE(isShown(chooser)); });
}

// Keyboard.

TEST_F(SelectDefaultCloudDialog, TakesTheKeyboardToItsFirstRow) {
    OneProvider(L"Ann|ann;Bob|bob");
    Use([](const Chooser& chooser) {
        EXPECT_EQ(IdOf(chooser.Focus()), OB_CHOOSER_LIST);
        chooser.Type(VK_SPACE);
        EXPECT_TRUE(obtest::WaitUntil([&] { return chooser.Ticked() == std::vector<int>{0}; }));
        chooser.Type(VK_DOWN);
        chooser.Type(VK_SPACE);
        EXPECT_TRUE(obtest::WaitUntil([&] { return chooser.Ticked() == std::vector<int>{1}; }));
        chooser.Type(VK_SPACE);
        EXPECT_TRUE(obtest::WaitUntil([&] { return chooser.Ticked().empty(); }));
        EXPECT_FALSE(chooser.ButtonIsEnabled());
    });
}

TEST_F(SelectDefaultCloudDialog, HasItsControlsInTheOrderInWhichTheyAreUsed) {
    OneProvider(L"Ann|ann");
    Use([](const Chooser& chooser) {
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, OB_CHOOSER_DEFAULT));
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, IDCANCEL)); // the main button is disabled
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, OB_CHOOSER_LIST));
        chooser.Tick(0);
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, OB_CHOOSER_DEFAULT));
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, OB_CHOOSER_CONTINUE));
        EXPECT_TRUE(MovesTo(chooser, VK_TAB, IDCANCEL));
    });
}

TEST_F(SelectDefaultCloudDialog, TakesEnterForTheMainButtonOnceARowIsTicked) {
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        chooser.Type(VK_RETURN);
        chooser.Settle();
        EXPECT_TRUE(chooser.IsOpen());
        chooser.Type(VK_SPACE);
        EXPECT_TRUE(obtest::WaitUntil([&] { return chooser.ButtonIsEnabled(); }));
        chooser.Type(VK_RETURN);
        EXPECT_TRUE(chooser.Closes());
    }));
    EXPECT_EQ(ChosenKey(), L"ann");
}

// What a screen reader gets.

// The name by which accessibility knows a control; nothing when this system has none for it.
std::optional<std::wstring> AccessibleName(HWND control) {
    ObLib::ComPtr<IAccessible> object;
    if (FAILED(AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT),
                                          __uuidof(IAccessible),
                                          reinterpret_cast<void**>(object.Put())))) {
        return std::nullopt;
    }
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    if (object->get_accName(self, &name) != S_OK || !name) return std::nullopt;
    const std::wstring text(name, SysStringLen(name));
    SysFreeString(name);
    return text;
}

std::wstring WithoutAccessKey(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

TEST_F(SelectDefaultCloudDialog, GivesEveryControlAName) {
    OneProvider(L"Ann|ann");
    Use([](const Chooser& chooser) {
        for (const int id : {OB_CHOOSER_DEFAULT, OB_CHOOSER_CONTINUE, IDCANCEL}) {
            EXPECT_EQ(AccessibleName(chooser.Item(id)), WithoutAccessKey(TextOf(chooser.Item(id))))
                << id;
            EXPECT_NE(AccessibleName(chooser.Item(id)), L"") << id;
        }
        // A list has no text of its own: its name is that of the label before it.
        EXPECT_EQ(GetWindow(chooser.list, GW_HWNDPREV), chooser.Item(OB_CHOOSER_LABEL));
        EXPECT_EQ(obtest::ClassOf(chooser.Item(OB_CHOOSER_LABEL)), L"Static");
        EXPECT_EQ(TextOf(chooser.Item(OB_CHOOSER_LABEL)), L"Cloud &accounts:");
        const auto ofList = AccessibleName(chooser.list);
        if (ofList.value_or(L"").empty()) {
            printf("This system names no list after its label: the label's place is checked.\n");
        } else {
            EXPECT_EQ(*ofList, L"Cloud accounts:");
        }
    });
}

TEST_F(SelectDefaultCloudDialog, HasOneAccessKeyForEachControl) {
    Use([](const Chooser& chooser) {
        const std::wstring texts[] = {TextOf(chooser.Item(OB_CHOOSER_LABEL)),
                                      TextOf(chooser.Item(OB_CHOOSER_DEFAULT)), LoginText()};
        std::wstring keys;
        for (const std::wstring& text : texts) {
            ASSERT_EQ(std::count(text.begin(), text.end(), L'&'), 1);
            const wchar_t key = static_cast<wchar_t>(towlower(text[text.find(L'&') + 1]));
            EXPECT_EQ(keys.find(key), std::wstring::npos);
            keys += key;
        }
        // The button keeps its key whatever its text.
        const std::wstring other = ContinueText();
        EXPECT_EQ(towlower(other[other.find(L'&') + 1]), keys.back());
    });
}

// Memory that runs out.

TEST_F(SelectDefaultCloudDialog, CountsAsCancelledWhenThereIsNoMemoryForItsRows) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"provider7.GetDisplayName", L"A provider with a name of some length");
    for (const std::size_t succeeding : {0u, 1u, 2u, 4u, 6u}) {
        const obtest::FailingAllocations failing({.succeeding = succeeding});
        EXPECT_FALSE(obcore::ShowSelectDefaultCloudDialog(owner_.Get(), job_)) << succeeding;
        EXPECT_TRUE(failing.Failed()) << succeeding;
    }
    EXPECT_TRUE(IsWindowEnabled(owner_.Get()));
}

TEST_F(SelectDefaultCloudDialog, KeepsNoOtherRowsTickOrTextWhenMemoryRunsOutForATick) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"provider7.IsAccountLoggedIn.bob", L"0");
    EXPECT_FALSE(Show([](const Chooser& chooser) {
        chooser.Tick(0);
        {
            const obtest::FailingAllocations failing({.othersOnly = true});
            chooser.Tick(1);
            EXPECT_TRUE(failing.Failed());
        }
        EXPECT_EQ(chooser.Ticked(), std::vector<int>{1});
        EXPECT_FALSE(chooser.ButtonIsEnabled());
        chooser.Cancel();
    }));
}

TEST_F(SelectDefaultCloudDialog, StaysUsableAfterMemoryRanOutForATick) {
    OneProvider(L"Ann|ann");
    EXPECT_TRUE(Show([](const Chooser& chooser) {
        {
            const obtest::FailingAllocations failing({.othersOnly = true});
            chooser.Tick(0);
            EXPECT_TRUE(failing.Failed());
        }
        EXPECT_FALSE(chooser.ButtonIsEnabled());
        chooser.SetTick(0, false);
        chooser.Tick(0);
        EXPECT_EQ(chooser.ButtonText(), ContinueText());
        {
            const obtest::FailingAllocations failing({.othersOnly = true});
            chooser.Press(OB_CHOOSER_CONTINUE);
            EXPECT_TRUE(failing.Failed());
        }
        EXPECT_TRUE(chooser.IsOpen());
        chooser.Press(OB_CHOOSER_CONTINUE);
    }));
    EXPECT_EQ(ChosenKey(), L"ann");
}

} // namespace

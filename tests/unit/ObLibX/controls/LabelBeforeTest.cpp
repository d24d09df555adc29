// The label that names a control for screen readers.
#include "ObLibX/src/controls/LabelBefore.h"

#include "ObLibX/src/controls/ObCustScroll.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

// Windows are made one after the other: each is after the one before in Z-order.
class LabelBeforeTest : public BarTest {
protected:
    HWND Add(const wchar_t* className, const wchar_t* text, DWORD style = 0) {
        const HWND made = Child(className, style, {10, 10, 90, 20});
        SetWindowTextW(made, text);
        SetWindowPos(made, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        return made;
    }
    static std::wstring NameOf(HWND window) { return LabelBefore(window).CStr(); }
};

TEST_F(LabelBeforeTest, IsTheTextBeforeWithoutItsAccessKey) {
    Add(L"Static", L"First:");
    Add(L"Static", L"&Lines && pages&");
    Add(L"Button", L"A group", BS_GROUPBOX);
    EXPECT_EQ(L"Lines & pages", NameOf(Add(L"Static", L"")));
}

TEST_F(LabelBeforeTest, IsNoneBeforeAControlThatTakesTheFocus) {
    Add(L"Static", L"Name:");
    const HWND edit = Add(L"Edit", L"", WS_TABSTOP);
    EXPECT_EQ(L"Name:", NameOf(edit));
    const HWND bar = Add(L"Static", L"");
    EXPECT_EQ(L"", NameOf(bar)) << "the label is the edit's";
}

TEST_F(LabelBeforeTest, PassesALabelWithoutText) {
    Add(L"Static", L"Name:");
    Add(L"Static", L"");
    EXPECT_EQ(L"Name:", NameOf(Add(L"Static", L"")));
}

// The way to name a control where no text is to be seen.
TEST_F(LabelBeforeTest, MayBeHidden) {
    ShowWindow(Add(L"Static", L"Volume"), SW_HIDE);
    EXPECT_EQ(L"Volume", NameOf(Add(L"Static", L"")));
}

TEST_F(LabelBeforeTest, IsNoneForTheFirstWindow) {
    EXPECT_EQ(L"", NameOf(Add(L"Static", L"Own text")));
}

TEST_F(LabelBeforeTest, IsReportedAsNoNameWhereThereIsNone) {
    const HWND window = Add(L"Static", L"");
    ObFlatScrollbar bar(1001, ScrollOrientation::Vertical);
    bar.Attach(window);
    ObLib::ComPtr<IAccessible> object;
    ASSERT_EQ(S_OK, AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                               __uuidof(IAccessible),
                                               reinterpret_cast<void**>(object.Put())));
    VARIANT self{};
    self.vt = VT_I4;
    BSTR name = SysAllocString(L"left from before");
    BSTR const old = name;
    EXPECT_EQ(S_FALSE, object->get_accName(self, &name));
    EXPECT_EQ(nullptr, name);
    SysFreeString(old);
    DestroyWindow(window);
}

} // namespace

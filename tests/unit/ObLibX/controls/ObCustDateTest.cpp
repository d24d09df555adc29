// The flat date picker: the stock one, which paints itself, with an object that keeps colours.
#include "ObLibX/src/controls/ObCustDate.h"

#include <commctrl.h>

#include <memory>

#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;

constexpr SYSTEMTIME kDay{2026, 11, 1, 23, 12, 34, 56, 0};
constexpr SYSTEMTIME kLater{2027, 2, 4, 25, 1, 2, 3, 0};

// A picker with an object, and a stock one beside it of the same size and day.
class DatePicker : public obtest::BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_DATE_CLASSES};
        InitCommonControlsEx(&classes);
        window_ = Child(DATETIMEPICK_CLASSW, WS_TABSTOP, {10, 10, 210, 34});
        stock_ = Child(DATETIMEPICK_CLASSW, WS_TABSTOP, {10, 50, 210, 74});
        for (const HWND picker : {window_, stock_}) SetDay(picker, kDay);
        picker_ = std::make_unique<ObFlatDatePicker>(1001);
        picker_->Attach(window_);
    }
    void TearDown() override {
        BarTest::TearDown();
        picker_.reset();
    }
    static void SetDay(HWND picker, SYSTEMTIME day) {
        SendMessageW(picker, DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&day));
    }
    // The year, month and day that a picker answers with, as one number.
    static int DayOf(HWND picker) {
        SYSTEMTIME day{};
        const LRESULT result =
            SendMessageW(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&day));
        return result == GDT_VALID ? day.wYear * 10000 + day.wMonth * 100 + day.wDay : -1;
    }
    static std::vector<COLORREF> PixelsOf(HWND picker) {
        RedrawWindow(picker, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        const ClientDc dc(picker);
        const PixelRect area = ClientArea(picker);
        std::vector<COLORREF> pixels;
        for (int y = 0; y < area.bottom; ++y) {
            for (int x = 0; x < area.right; ++x) pixels.push_back(GetPixel(dc.Get(), x, y));
        }
        return pixels;
    }

    HWND window_ = nullptr;
    HWND stock_ = nullptr;
    std::unique_ptr<ObFlatDatePicker> picker_;
};

TEST_F(DatePicker, IsAttachedWithTheBaseFont) {
    EXPECT_EQ(window_, picker_->window);
    EXPECT_EQ(1001, picker_->id);
    EXPECT_STREQ(L"Segoe UI", picker_->fontName.CStr());
    EXPECT_EQ(9, picker_->fontSize);
}

TEST_F(DatePicker, KeepsItsColours) {
    EXPECT_EQ(0u, picker_->GetTextColor());
    EXPECT_EQ(kNoColor, picker_->GetRawFillColor());
    EXPECT_EQ(GetPaletteColor(kPaletteHover), picker_->GetHoverColor());
    picker_->SetTextColor(0x112233);
    picker_->SetFillColor(0x445566);
    EXPECT_EQ(0x112233u, picker_->GetTextColor());
    EXPECT_EQ(0x445566u, picker_->GetFillColor());
    obtest::isBarContrast = true;
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), picker_->GetTextColor());
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), picker_->GetFillColor());
}

TEST_F(DatePicker, IsPaintedAsAStockOne) {
    const std::vector<COLORREF> before = PixelsOf(stock_);
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(before, PixelsOf(window_));
    picker_->SetFillColor(0x445566);
    picker_->SetTextColor(0x112233);
    EXPECT_EQ(before, PixelsOf(window_)) << "the object's colours aren't the picker's";
    SetDay(window_, kLater);
    EXPECT_NE(before, PixelsOf(window_));
    SetDay(stock_, kLater);
    EXPECT_EQ(PixelsOf(stock_), PixelsOf(window_));
    for (const HWND picker : {window_, stock_}) EnableWindow(picker, FALSE);
    EXPECT_EQ(PixelsOf(stock_), PixelsOf(window_)) << "disabled";
}

TEST_F(DatePicker, AnswersAsAStockOne) {
    EXPECT_EQ(20261123, DayOf(window_));
    for (const HWND picker : {window_, stock_}) {
        SYSTEMTIME range[2]{kDay, kLater};
        EXPECT_EQ(TRUE, SendMessageW(picker, DTM_SETRANGE, GDTR_MIN | GDTR_MAX,
                                     reinterpret_cast<LPARAM>(range)));
        EXPECT_EQ(TRUE, SendMessageW(picker, DTM_SETFORMATW, 0,
                                     reinterpret_cast<LPARAM>(L"yyyy'/'MM'/'dd")));
        SetDay(picker, kLater);
    }
    EXPECT_EQ(20270225, DayOf(window_));
    EXPECT_EQ(PixelsOf(stock_), PixelsOf(window_)) << "another form";
    for (const UINT message : {UINT{WM_GETDLGCODE}, UINT{WM_GETFONT}, UINT{DTM_GETRANGE}}) {
        SYSTEMTIME range[2]{};
        const auto record = reinterpret_cast<LPARAM>(message == DTM_GETRANGE ? range : nullptr);
        EXPECT_EQ(SendMessageW(stock_, message, 0, record),
                  SendMessageW(window_, message, 0, record))
            << message;
    }
}

TEST_F(DatePicker, ForgetsItsWindowAndTakesTheNextOne) {
    DestroyWindow(window_);
    EXPECT_EQ(nullptr, picker_->window);
    picker_->Refresh();
    window_ = Child(DATETIMEPICK_CLASSW, WS_TABSTOP, {10, 10, 210, 34});
    picker_->Attach(window_);
    EXPECT_EQ(window_, picker_->window);
    SetDay(window_, kLater);
    EXPECT_EQ(20270225, DayOf(window_));
}

TEST_F(DatePicker, LeavesAStockWindowWhenTheObjectGoesFirst) {
    const auto procedure = [](HWND picker) { return GetWindowLongPtrW(picker, GWLP_WNDPROC); };
    EXPECT_NE(procedure(stock_), procedure(window_));
    picker_.reset();
    EXPECT_EQ(procedure(stock_), procedure(window_));
    Key(window_, VK_UP);
    SetDay(window_, kLater);
    SetDay(stock_, kLater);
    EXPECT_EQ(20270225, DayOf(window_));
    EXPECT_EQ(PixelsOf(stock_), PixelsOf(window_));
}

} // namespace

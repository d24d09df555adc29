// What the tests of list views share: a dialog with lists, which hears and answers what they send
// it, and the pixels that a list shows.
#pragma once

#include "ObLibX/src/controls/ObCustList.h"

#include <commctrl.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/ListTestIds.h"
#include "tests/unit/ObLibX/controls/PixelQuestions.h"

namespace listtest {

// A question about a cell's colour.
struct ColorAsked {
    int id = 0;
    int row = 0;
    int column = 0;
    std::uint32_t flags = 0;
    bool operator==(const ColorAsked&) const = default;
};

class ListDialog : public ObLibX::ObXFlatDlg {
public:
    ListDialog() : ObXFlatDlg(OB_TEST_LISTS, nullptr, 0, false) {}

    bool OnNotify(int id, NMHDR* header, LRESULT& result) override {
        if (header->code == static_cast<UINT>(NM_CUSTOMDRAW)) return OnDraw(id, header, result);
        codes.emplace_back(id, static_cast<int>(header->code));
        if (header->code == static_cast<UINT>(LVN_ITEMCHANGED) && onChanged) onChanged();
        if (header->code == static_cast<UINT>(LVN_GETDISPINFOW) && onAsked) {
            onAsked(reinterpret_cast<NMLVDISPINFOW*>(header)->item);
        }
        const bool isChanging = header->code == static_cast<UINT>(LVN_ITEMCHANGING);
        result = isChanging && refusesChanges ? TRUE : FALSE;
        return true;
    }
    COLORREF GetListItemColor(int id, int row, int column, std::uint32_t flags) override {
        asked.push_back({id, row, column, flags});
        return cellColor ? cellColor(row, column) : ObLibX::kNoColor;
    }
    // How often a row was painted since this was empty.
    std::map<int, int> painted;
    std::vector<std::pair<int, int>> codes; // of notifications but custom draw, with the list's id
    std::vector<ColorAsked> asked;
    std::function<LRESULT(NMLVCUSTOMDRAW&)> onDraw;
    std::function<COLORREF(int row, int column)> cellColor;
    std::function<void()> onChanged;
    bool refusesChanges = false;
    std::function<void(LVITEMW&)> onAsked;

private:
    bool OnDraw(int id, NMHDR* header, LRESULT& result) {
        auto& draw = *reinterpret_cast<NMLVCUSTOMDRAW*>(header);
        if (id == 1001 && draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT) {
            ++painted[static_cast<int>(draw.nmcd.dwItemSpec)];
        }
        result = onDraw ? onDraw(draw) : CDRF_DODEFAULT;
        return true;
    }
};

// What a window's client area shows, to be asked for single pixels.
class ShownPixels : public obtest::PixelQuestions<ShownPixels> {
public:
    explicit ShownPixels(HWND window) : area_(ObLibX::ClientArea(window)) {
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        const ObLibX::ClientDc shown(window);
        const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(shown.Get()));
        BITMAPINFO info{};
        info.bmiHeader = {
            sizeof info.bmiHeader, area_.right, -area_.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const ObLib::UniqueBitmap bitmap(
            CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        if (!bitmap) return;
        const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
        BitBlt(dc.Get(), 0, 0, area_.right, area_.bottom, shown.Get(), 0, 0, SRCCOPY);
        GdiFlush();
        const auto* const first = static_cast<const std::uint32_t*>(bits);
        pixels_.assign(first, first + area_.right * area_.bottom);
        SelectObject(dc.Get(), old);
    }

    // CLR_INVALID outside.
    [[nodiscard]] COLORREF At(int x, int y) const {
        if (pixels_.empty() || !area_.Contains(ObLibX::PixelPoint{x, y})) return CLR_INVALID;
        const std::uint32_t pixel = pixels_[static_cast<std::size_t>(y * area_.right + x)];
        return RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
    }
    [[nodiscard]] const ObLibX::PixelRect& Area() const { return area_; }
    // The pixels, row by row.
    [[nodiscard]] std::vector<COLORREF> Of(const ObLibX::PixelRect& rect) const {
        std::vector<COLORREF> pixels;
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) pixels.push_back(At(x, y));
        }
        return pixels;
    }
    // The first and the last column of a rectangle that isn't all ground; -1 and -1 for none.
    [[nodiscard]] std::pair<int, int> Inked(const ObLibX::PixelRect& rect, COLORREF ground) const {
        std::pair<int, int> found{-1, -1};
        for (int x = rect.left; x < rect.right; ++x) {
            if (IsAll({x, rect.top, x + 1, rect.bottom}, ground)) continue;
            if (found.first < 0) found.first = x;
            found.second = x;
        }
        return found;
    }

private:
    ObLibX::PixelRect area_;
    std::vector<std::uint32_t> pixels_;
};

// A list of `count` pictures of one colour.
inline ObLib::UniqueImageList ColouredImages(int size, int count, COLORREF color) {
    ObLib::UniqueImageList images(ImageList_Create(size, size, ILC_COLOR32, count, 1));
    const HDC screen = GetDC(nullptr);
    for (int at = 0; at < count; ++at) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, size, size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const ObLib::UniqueBitmap bitmap(
            CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        const DWORD pixel = 0xFF000000 | RGB(GetBValue(color), GetGValue(color), GetRValue(color));
        for (int left = size * size; left > 0; --left) static_cast<DWORD*>(bits)[left - 1] = pixel;
        ImageList_Add(images.Get(), bitmap.Get(), nullptr);
    }
    ReleaseDC(nullptr, screen);
    return images;
}

inline bool IsAlive(HIMAGELIST images) {
    int width = 0;
    int height = 0;
    return ImageList_GetIconSize(images, &width, &height) != FALSE;
}

inline std::vector<std::wstring> themes; // as they were set; "none" for null
inline HRESULT WINAPI RecordTheme(HWND, LPCWSTR name, LPCWSTR) {
    themes.emplace_back(name != nullptr ? name : L"none");
    return S_OK;
}

inline std::vector<HWND> filled; // the window of each fill; null for a bitmap
inline int WINAPI RecordFill(HDC dc, const RECT* rect, HBRUSH brush) {
    static const auto real = reinterpret_cast<decltype(&FillRect)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "FillRect")));
    filled.push_back(WindowFromDC(dc));
    return real(dc, rect, brush);
}

inline std::vector<std::pair<std::wstring, HGDIOBJ>> drawn; // texts, each with its font
inline int WINAPI RecordText(HDC dc, LPCWSTR text, int count, RECT* rect, UINT format) {
    drawn.emplace_back(text, GetCurrentObject(dc, OBJ_FONT));
    return DrawTextExW(dc, const_cast<wchar_t*>(text), count, rect, format, nullptr);
}

inline BOOL WINAPI TrackNothing(TRACKMOUSEEVENT*) { return TRUE; }

inline std::vector<std::pair<DWORD, LONG>> events; // and the child that each is about
inline void WINAPI RecordEvent(DWORD event, HWND, LONG, LONG child) {
    events.emplace_back(event, child);
}

} // namespace listtest

// The dialog is open, its lists are empty but for what a test puts in.
class ListsTest : public FieldsTest {
protected:
    void SetUp() override {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&classes);
        FieldsTest::SetUp();
        ASSERT_TRUE(theme_.Ok() && track_.Ok() && event_.Ok());
        listtest::themes.clear();
        listtest::events.clear();
        OpenLists();
    }
    void OpenLists() {
        dialog_ = std::make_unique<listtest::ListDialog>();
        dialog_->Create(nullptr);
        ShowWindow(dialog_->window, SW_SHOW);
        SetFocus(Item(1010));
        UpdateWindow(dialog_->window);
        Heard().painted.clear();
        Heard().codes.clear();
    }
    listtest::ListDialog& Heard() const { return dynamic_cast<listtest::ListDialog&>(*dialog_); }
    ObLibX::ObFlatListView& List(int id = 1001) const { return Object<ObLibX::ObFlatListView>(id); }
    HWND Window(int id = 1001) const { return Item(id); }
    HWND Header(int id = 1001) const { return reinterpret_cast<HWND>(Send(id, LVM_GETHEADER)); }
    LRESULT Send(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(Item(id), message, wParam, lParam);
    }
    // What the system's own procedure answers, without what is on top of it.
    LRESULT Stock(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        WNDCLASSW row{};
        GetClassInfoW(nullptr, WC_LISTVIEWW, &row);
        return CallWindowProcW(row.lpfnWndProc, Item(id), message, wParam, lParam);
    }
    DWORD StockStyle(int id = 1001) const {
        return static_cast<DWORD>(Stock(id, LVM_GETEXTENDEDLISTVIEWSTYLE));
    }
    // The height of the images that set the height of rows; 0 without any.
    int RowImages(int id = 1001) const {
        int width = 0;
        int height = 0;
        const auto images = reinterpret_cast<HIMAGELIST>(Stock(id, LVM_GETIMAGELIST, LVSIL_SMALL));
        if (images != nullptr) ImageList_GetIconSize(images, &width, &height);
        return height;
    }
    int Insert(const wchar_t* text, int id = 1001, int row = 1'000'000) const {
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = const_cast<wchar_t*>(text);
        return static_cast<int>(Send(id, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    }
    // Without a painting for each of them.
    void InsertMany(int rows, int id = 1001) const {
        Send(id, WM_SETREDRAW, FALSE);
        for (int row = 0; row < rows; ++row) Insert(L"A row", id);
        Send(id, WM_SETREDRAW, TRUE);
    }
    void SetCell(int row, int column, const wchar_t* text, int id = 1001) const {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = const_cast<wchar_t*>(text);
        Send(id, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    void SetState(int row, UINT state, UINT mask, int id = 1001) const {
        LVITEMW item{};
        item.state = state;
        item.stateMask = mask;
        Send(id, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    UINT StateOf(int row, UINT mask, int id = 1001) const {
        return static_cast<UINT>(Send(id, LVM_GETITEMSTATE, static_cast<WPARAM>(row), mask));
    }
    ObLibX::RowCheck Check(int row, int id = 1001) const {
        return ObLibX::CheckOfRow(Item(id), row);
    }
    void GiveChecks(int id = 1001) const {
        Send(id, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    }
    ObLibX::PixelRect RowArea(int row, int id = 1001) const {
        RECT area{LVIR_BOUNDS, 0, 0, 0};
        Send(id, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area));
        return ObLibX::AsPixels(area);
    }
    ObLibX::PixelRect CellArea(int row, int column, int id = 1001) const {
        RECT title{};
        SendMessageW(Header(id), HDM_GETITEMRECT, static_cast<WPARAM>(column),
                     reinterpret_cast<LPARAM>(&title));
        MapWindowPoints(Header(id), Item(id), reinterpret_cast<POINT*>(&title), 2);
        const ObLibX::PixelRect area = RowArea(row, id);
        return {title.left, area.top, title.right, area.bottom};
    }
    ObLibX::PixelRect TitleArea(int column, int id = 1001) const {
        RECT title{};
        SendMessageW(Header(id), HDM_GETITEMRECT, static_cast<WPARAM>(column),
                     reinterpret_cast<LPARAM>(&title));
        return ObLibX::AsPixels(title);
    }
    void Move(int x, int y, int id = 1001) const { Send(id, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }
    // A press that is let go at once, which the system's list waits for.
    void Click(ObLibX::PixelPoint at, UINT press = WM_LBUTTONDOWN, int id = 1001) const {
        const LPARAM point = MAKELPARAM(at.x, at.y);
        PostMessageW(Item(id), WM_LBUTTONUP, 0, point);
        Send(id, press, MK_LBUTTON, point);
        MSG message{};
        while (PeekMessageW(&message, Item(id), WM_LBUTTONUP, WM_LBUTTONUP, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }

private:
    obtest::ImportPatch<HRESULT WINAPI(HWND, LPCWSTR, LPCWSTR)> theme_{
        "uxtheme.dll", "SetWindowTheme", &listtest::RecordTheme};
    obtest::ImportPatch<decltype(&TrackMouseEvent)> track_{"user32.dll", "TrackMouseEvent",
                                                           &listtest::TrackNothing};
    obtest::ImportPatch<decltype(&NotifyWinEvent)> event_{"user32.dll", "NotifyWinEvent",
                                                          &listtest::RecordEvent};
};

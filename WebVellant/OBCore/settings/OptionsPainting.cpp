#include "OBCore/settings/OptionsPainting.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "OBCore/settings/TransformRows.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace obcore {
namespace {

constexpr COLORREF kLineColor = 0xEBECF1;
constexpr COLORREF kDarkText = 0x1B1B1B;
constexpr COLORREF kGrayText = 0x646464;
constexpr COLORREF kWhiteText = 0xFFFFFF;
constexpr int kHeadlineSize = 12;    // points
constexpr int kExplanationSize = 10; // points
constexpr int kLargeScreen = 144;    // dots per inch

// In pixels of every screen.
constexpr int kStrip = 56;
constexpr int kLargeStrip = 60;
constexpr int kLineBelow = 20;
constexpr int kLineInset = 34;

constexpr int kLineAfter[] = {OB_OPTIONS_CLOUD, OB_OPTIONS_ATTACHMENT,
                              OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS};
constexpr int kHeadlines[] = {OB_OPTIONS_HEADLINE_1, OB_OPTIONS_HEADLINE_2, OB_OPTIONS_HEADLINE_3,
                              OB_OPTIONS_BROWSERS};
constexpr int kExplanations[] = {OB_OPTIONS_EXPLANATION_1, OB_OPTIONS_EXPLANATION_2,
                                 OB_OPTIONS_EXPLANATION_3, OB_OPTIONS_EXPLANATION_4};
constexpr int kButtons[] = {OB_OPTIONS_CLOUD,
                            OB_OPTIONS_ATTACHMENT,
                            OB_OPTIONS_CONVERT_PDF_SETTINGS,
                            OB_OPTIONS_RESIZE_IMAGES_SETTINGS,
                            OB_OPTIONS_WATERMARK_SETTINGS,
                            OB_OPTIONS_CONVERT_PHOTOS_SETTINGS,
                            OB_OPTIONS_REMOVE_INFO_SETTINGS,
                            OB_OPTIONS_EDGE,
                            OB_OPTIONS_FIREFOX,
                            OB_OPTIONS_SIGN_PDFS_SETTINGS,
                            OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS,
                            OB_OPTIONS_CHROME};

// A control with its images, one for each scale.
struct PictureRow {
    int control;
    std::array<int, 4> images;
};

constexpr PictureRow kPictures[] = {
    {OB_OPTIONS_PICTURE_1, {110, 13001, 13002, 13003}},
    {OB_OPTIONS_PICTURE_2, {101, 13004, 13005, 13006}},
    {OB_OPTIONS_PICTURE_3, {104, 13007, 13008, 13009}},
    {OB_OPTIONS_PICTURE_4, {113, 12098, 12099, 13000}},
};
constexpr int kPictureScales[] = {120, 144, 168}; // dots per inch from which the next image counts

std::size_t PictureIndex(int dpi) {
    return static_cast<std::size_t>(
        std::ranges::count_if(kPictureScales, [&](int from) { return dpi >= from; }));
}

COLORREF StripColor() {
    return ObLibX::IsHighContrast() ? GetSysColor(COLOR_WINDOW)
                                    : ObLibX::GetPaletteColor(ObLibX::kPaletteWhite);
}

LONG GroundBottom(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return client.bottom - (ObLibX::GetDpi() < kLargeScreen ? kStrip : kLargeStrip);
}

RECT PlaceIn(HWND window, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void DrawLines(HWND window, HDC dc) {
    RECT client{};
    GetClientRect(window, &client);
    const ObLib::UniquePen pen(CreatePen(PS_SOLID, 1, kLineColor));
    const HGDIOBJ old = SelectObject(dc, pen.Get());
    for (const int id : kLineAfter) {
        const HWND control = GetDlgItem(window, id);
        if (!control) continue;
        const LONG y = PlaceIn(window, control).bottom + kLineBelow;
        MoveToEx(dc, kLineInset, y, nullptr);
        LineTo(dc, client.right - kLineInset, y);
    }
    SelectObject(dc, old);
}

void SetTextColors(const ObLibX::ObXDlg& dialog, std::span<const int> ids, COLORREF color) {
    for (const int id : ids) {
        if (ObLibX::ObCustomControl* const control = dialog.GetControl(id)) {
            control->SetTextColor(color);
        }
    }
}

void SetFonts(const ObLibX::ObXDlg& dialog, std::span<const int> ids, int size, int weight) {
    for (const int id : ids) {
        if (ObLibX::ObCustomControl* const control = dialog.GetControl(id)) {
            control->SetControlFont(ObLib::ObString(), size, weight, 0);
        }
    }
}

bool IsText(HWND control) {
    wchar_t name[16] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return CompareStringOrdinal(name, -1, L"Static", -1, TRUE) == CSTR_EQUAL;
}

bool IsOfTransform(int id) {
    return std::ranges::any_of(kTransformBoxes, [&](const TransformBoxRow& row) {
        return row.box == id || row.settings == id;
    });
}

// Controls take the parent's background for white.
void SetGround(const ObLibX::ObXDlg& dialog) {
    for (const auto& [id, control] : dialog.Controls()) {
        if ((IsText(control->window) || IsOfTransform(id)) &&
            IsOnGround(dialog.window, control->window)) {
            control->UsePalette(&ObLibX::ObCustomControl::fillColor, ObLibX::kPaletteButtonFill);
        }
    }
}

// Without alpha: a label of the common controls 6 makes a copy of a picture that has any, and frees
// it never.
ObLib::UniqueBitmap WithoutAlpha(HBITMAP picture) {
    const SIZE size = ObLibX::ImageSize(picture);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, size.cx, size.cy, 1, 24, BI_RGB};
    void* pixels = nullptr;
    ObLib::UniqueBitmap copy(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    const ObLib::UniqueResource<ObLib::MemoryDcPolicy> from(CreateCompatibleDC(nullptr));
    const ObLib::UniqueResource<ObLib::MemoryDcPolicy> to(CreateCompatibleDC(nullptr));
    if (!copy || !from || !to) return {};
    const HGDIOBJ oldFrom = SelectObject(from.Get(), picture);
    const HGDIOBJ oldTo = SelectObject(to.Get(), copy.Get());
    BitBlt(to.Get(), 0, 0, size.cx, size.cy, from.Get(), 0, 0, SRCCOPY);
    SelectObject(from.Get(), oldFrom);
    SelectObject(to.Get(), oldTo);
    return copy;
}

ObLib::UniqueBitmap LoadPicture(int id) {
    const auto image = ObLibX::LoadGraphicsImage(id, ResourceModule());
    const ObLib::UniqueBitmap bitmap(image ? image->MakeBitmap() : nullptr);
    return bitmap ? WithoutAlpha(bitmap.Get()) : ObLib::UniqueBitmap();
}

} // namespace

COLORREF GroundColor() { return ObLibX::GetPaletteColor(ObLibX::kPaletteButtonFill); }

bool IsOnGround(HWND window, HWND control) {
    return PlaceIn(window, control).top < GroundBottom(window);
}

void PaintOptions(HWND window) {
    const ObLibX::PaintDc paint(window);
    if (!paint.Get()) return;
    const ObLibX::PixelRect client = ObLibX::ClientArea(window);
    ObLibX::PixelRect ground = client;
    ObLibX::PixelRect strip = client;
    ground.bottom = strip.top = GroundBottom(window);
    ObLibX::FillArea(paint.Get(), ground, GroundColor());
    ObLibX::FillArea(paint.Get(), strip, StripColor());
    DrawLines(window, paint.Get());
}

void StyleOptions(const ObLibX::ObXDlg& dialog) {
    SetGround(dialog);
    SetFonts(dialog, kHeadlines, kHeadlineSize, FW_BOLD);
    SetTextColors(dialog, kHeadlines, kDarkText);
    SetFonts(dialog, kExplanations, kExplanationSize, FW_NORMAL);
    SetTextColors(dialog, kExplanations, kGrayText);
    SetTextColors(dialog, kButtons, kWhiteText);
    for (const TransformBoxRow& row : kTransformBoxes) {
        SetTextColors(dialog, {&row.box, 1}, kDarkText);
    }
}

void OptionsPictures::Show(HWND window) {
    const std::size_t index = PictureIndex(ObLibX::GetDpi());
    for (const PictureRow& row : kPictures) {
        ObLib::UniqueBitmap bitmap = LoadPicture(row.images[index]);
        if (!bitmap) continue;
        SendDlgItemMessageW(window, row.control, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(bitmap.Get()));
        bitmaps_.push_back(std::move(bitmap));
    }
}

} // namespace obcore

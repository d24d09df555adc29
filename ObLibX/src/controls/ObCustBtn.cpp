#include "ObLibX/src/controls/ObCustBtn.h"

#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr COLORREF kDisabledAccentFill = 0xF0F0F0;
constexpr COLORREF kDisabledAccentText = 0xC0C0C0;
constexpr std::int32_t kImageMargin = 4; // of a button that is sized to its image; at 96 dpi
constexpr int kRingDistance = 2;         // pixels, at every scale
constexpr int kSeparatorInset = 3;       // at 96 dpi

const std::int32_t* ImagesOf(const ButtonLook& look) {
    return look.image ? ImageList(*look.image) : nullptr;
}

void TakeColor(ObCustomControl& control, COLORREF ObCustomControl::*color, std::int32_t entry) {
    if (entry == kWithoutColor) control.*color = kNoColor;
    if (entry >= 0) control.UsePalette(color, static_cast<std::uint32_t>(entry));
}

PixelSize SizeOf(const SharedImagePtr& image) {
    if (!image) return {};
    const SIZE size = image->Size();
    return {size.cx, size.cy};
}

std::uint32_t StyleOf(HWND window) {
    return static_cast<std::uint32_t>(GetWindowLongPtrW(window, GWL_STYLE));
}

// What the parent fills itself with, also in high contrast. Owned by the system or the dialog.
HBRUSH BackgroundBrush(HWND parent, HDC dc) {
    return reinterpret_cast<HBRUSH>(SendMessageW(
        parent, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(parent)));
}

} // namespace

// What one painting needs to know.
struct ObFlatBtn::Face {
    ObLib::ObString text;
    ButtonArrangement arrangement;
    ButtonContents contents;
    std::uint32_t style = 0;
    UINT hiddenCues = 0;
};

ObFlatBtn::ObFlatBtn(std::int32_t buttonId) : ObFlatBtn(buttonId, ButtonClass::Plain) {}

ObFlatBtn::ObFlatBtn(std::int32_t buttonId, ButtonClass buttonClass)
    : ObCustomControl(buttonId, ImagesOf(LookOf(buttonClass)), L"", 0) {
    const ButtonLook& look = LookOf(buttonClass);
    const auto has = [&](std::uint32_t flag) { return (look.flags & flag) != 0; };
    TakeColor(*this, &ObCustomControl::fillColor, look.fill);
    TakeColor(*this, &ObCustomControl::textColor, look.text);
    TakeColor(*this, &ObCustomControl::hoverColor, look.hover);
    TakeColor(*this, &ObCustomControl::pressedColor, look.pressed);
    accentRing = has(kLookRing);
    sizeToImage = has(kLookSizeToImage);
    imageOnly = has(kLookImageOnly);
    imageGap = !has(kLookNoGap);
    hasFrame = has(kLookNoFrame) ? 0 : 1;
    clipFocusToText = has(kLookTextFocus);
    if (has(kLookLeft)) defaultHorizontal = HorizontalPlace::Left;
    imageSide = look.imageSide;
    padding = look.padding;
}

// A window that outlives its object goes on as the stock button.
ObFlatBtn::~ObFlatBtn() { RemoveSubclass(window, &ObFlatBtn::ButtonProcedure, this); }

// The mouse isn't on a window that is new, wherever it was on the one before.
void ObFlatBtn::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    isDown = false;
    isHot = false;
    isPressed = false;
    animatedColor = kNoColor;
    currentFrameColor = GetFrameColor();
    if (sizeToImage) SizeToImage();
    AddSubclass(window, Procedure(), this);
}

void ObFlatBtn::SizeToImage() {
    const PixelSize image = SizeOf(LoadSharedImage(images.ids[0]));
    if (image.IsEmpty()) return;
    RECT rect{};
    GetWindowRect(window, &rect);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
    const PixelRect sized = Centred(
        AsPixels(rect), {Scale(image.width + kImageMargin), Scale(image.height + kImageMargin)});
    SetWindowPos(window, nullptr, sized.left, sized.top, sized.Width(), sized.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

bool ObFlatBtn::IsAccent() const {
    return fillColor == kAccentColor || fillColor == GetPaletteColor(kPaletteAccent);
}

COLORREF ObFlatBtn::GetFillColor() {
    if (IsAccent() && !IsEnabled()) return kDisabledAccentFill;
    return IsHighContrast() ? GetSysColor(COLOR_BTNFACE) : ObCustomControl::GetFillColor();
}

COLORREF ObFlatBtn::GetTextColor() {
    if (IsAccent() && !IsEnabled()) return kDisabledAccentText;
    return IsHighContrast() ? GetSysColor(COLOR_BTNTEXT) : textColor;
}

ButtonState ObFlatBtn::State() const {
    if (isDown) return ButtonState::Pressed;
    return isHot ? ButtonState::Hot : ButtonState::Idle;
}

std::uint32_t ObFlatBtn::SetAnimatedColor(COLORREF color) {
    if (window == nullptr) return 0;
    animatedColor = color;
    PaintState(State());
    return 1;
}

void ObFlatBtn::OnMouseMove(int, int) {
    if (noMouseStates || isHot) return;
    isHot = true;
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
    TrackMouseEvent(&leave);
    if (!IsAccent()) {
        // A click inside a fade has ended the hover, but not the fade.
        if (!fade.IsRunning()) fade.Start(*this, GetFillColor(), GetHoverColor());
        currentFrameColor = GetHotFrameColor();
    }
    PaintState(State());
}

void ObFlatBtn::OnMouseLeave() {
    fade.Stop();
    currentFrameColor = GetFrameColor();
    animatedColor = kNoColor;
    isHot = false;
    PaintState(ButtonState::Idle);
}

void ObFlatBtn::OnLeftButtonDown(int, int) {
    isDown = !noMouseStates;
    isPressed = true;
    PaintState(ButtonState::Pressed);
}

// The next movement of the mouse makes it hot again.
void ObFlatBtn::OnLeftButtonUp(int, int) {
    isDown = false;
    isPressed = false;
    isHot = false;
    PaintState(ButtonState::Idle);
}

// Also after a click, which has ended the hover, but has left its colours.
void ObFlatBtn::ForgetMouse() {
    isDown = false;
    isPressed = false;
    OnMouseLeave();
}

void ObFlatBtn::HideRing() {
    if (accentRing && State() != ButtonState::Idle) PaintRing(ButtonState::Idle);
}

void ObFlatBtn::Paint(HDC dc) { PaintButton(State(), dc); }

void ObFlatBtn::Repaint() {
    if (!IsWindowVisible(window)) return;
    const ClientDc dc(window);
    Paint(dc.Get());
}

void ObFlatBtn::PaintState(ButtonState state) {
    if (!IsWindowVisible(window)) return;
    const ClientDc dc(window);
    PaintButton(state, dc.Get());
}

void ObFlatBtn::PaintButton(ButtonState state, HDC target) {
    const OffscreenPaint paint(window, target);
    if (paint) {
        PaintFace(state, paint.Dc(), paint.Area());
        paint.Show();
    }
    if (accentRing) PaintRing(state);
}

void ObFlatBtn::PaintFace(ButtonState state, HDC dc, const PixelRect& area) {
    paintDpi_ = GetDeviceCaps(dc, LOGPIXELSX);
    const Face face = FaceOf(state);
    const ButtonAreas areas = AreasOf(area, face.arrangement, face.contents);
    layoutRectangle = areas.layout;
    imageRectangle = areas.image;

    FillArea(dc, area, GetFillColor());
    if (hasFrame == 1) FrameArea(dc, area, currentFrameColor);
    PaintText(face, dc);
    PaintOver(dc, PaintImage(face, dc));
    PaintFocus(dc, face.hiddenCues);
}

ObFlatBtn::Face ObFlatBtn::FaceOf(ButtonState state) {
    Face face;
    face.text = TextOfControl(*this);
    UpdateImages();
    image_ = ImageOf(state);
    face.arrangement = {imageBesideText, imageSide, imageGap, imageOnly};
    face.contents = {SizeOf(image_), 0, Scaled(padding), face.text.HasText()};
    face.contents.spare = SpareOf(face.contents.image.width);
    face.style = StyleOf(window);
    face.hiddenCues = HiddenCues(*this);
    return face;
}

// That of the first state where this one has none, or one that isn't among the resources.
SharedImagePtr ObFlatBtn::ImageOf(ButtonState state) const {
    SharedImagePtr image;
    for (const std::int32_t row : {static_cast<std::int32_t>(state), 0}) {
        const std::int32_t id = GetImageId(images, row, paintDpi_);
        if (!image && id != 0) image = LoadSharedImage(id);
    }
    return image;
}

void ObFlatBtn::PaintText(const Face& face, HDC dc) {
    textRectangle = {};
    if (imageOnly || !face.contents.hasText) return;
    const bool isDimmed = !IsEnabled() && !IsAccent();
    const TextStyle style{isDimmed ? kDisabledTextColor : GetTextColor(), face.hiddenCues,
                          HorizontalOf(face.style, defaultHorizontal),
                          VerticalOf(face.style, defaultVertical),
                          (face.style & BS_MULTILINE) != 0};
    const PixelRect area = Inset(layoutRectangle, face.contents.padding);
    textRectangle = DrawControlText(*this, dc, face.text, area, style);
}

// Returns the image's left edge; without one, where it would be.
std::int32_t ObFlatBtn::PaintImage(const Face& face, HDC dc) {
    const PixelPoint place = PlaceImage(imageRectangle, face.arrangement, face.contents,
                                        VerticalOf(face.style, VerticalPlace::Centre));
    if (image_) DrawImage(dc, image_->Bitmap(), place.x, place.y);
    return place.x;
}

// A window whose focus isn't to be seen before keys are used has no rectangle for it.
void ObFlatBtn::PaintFocus(HDC dc, UINT hiddenCues) {
    ComputeFocusRectangle();
    if ((hiddenCues & UISF_HIDEFOCUS) != 0) focusRectangle = {};
    if (!HasFocus()) return;
    if (!frameFocus) {
        DrawFocus(dc);
    } else if (!focusRectangle.IsEmpty()) {
        FrameArea(dc, focusRectangle, focusFrameColor);
    }
}

// The stock button knows it by its messages; the system would be asked in another process.
bool ObFlatBtn::HasFocus() const {
    return (SendMessageW(window, BM_GETSTATE, 0, 0) & BST_FOCUS) != 0;
}

// Without asking the system for its scale.
void ObFlatBtn::ComputeFocusRectangle() { PlaceFocusRectangle(Scaled(kFocusBoxInset)); }

void ObFlatBtn::PaintRing(ButtonState state) {
    const HWND parent = GetParent(window);
    if (parent == nullptr || !IsWindowVisible(window)) return;
    RECT rect{};
    GetWindowRect(window, &rect);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
    InflateRect(&rect, kRingDistance, kRingDistance);
    const ClientDc dc(parent);
    if (state == ButtonState::Idle) {
        FrameRect(dc.Get(), &rect, BackgroundBrush(parent, dc.Get()));
    } else {
        FrameArea(dc.Get(), AsPixels(rect), GetPaletteColor(kPaletteAccent));
    }
}

ObFlatBlueBtn::ObFlatBlueBtn(std::int32_t buttonId) : ObFlatBtn(buttonId, ButtonClass::Blue) {}

ObFlatSettingsBtn::ObFlatSettingsBtn(std::int32_t buttonId)
    : ObFlatBtn(buttonId, ButtonClass::Settings) {}

void ObFlatSettingsBtn::Attach(HWND attached) {
    hasFrame = 0;
    ObFlatBtn::Attach(attached);
}

void ObFlatSettingsBtn::Refresh() {
    images = ImageSet(ImageList(ControlImage::Settings));
    ObFlatBtn::Refresh();
}

void ObFlatSettingsBtn::OnMouseMove(int x, int y) {
    hasFrame = 1;
    ObFlatBtn::OnMouseMove(x, y);
}

void ObFlatSettingsBtn::OnMouseLeave() {
    hasFrame = 0;
    ObFlatBtn::OnMouseLeave();
}

// High contrast has a colour of its own for it.
void ObFlatSettingsBtn::DrawImage(HDC dc, HBITMAP bitmap, int x, int y) {
    ObLib::UniqueBitmap dimmed;
    if (!IsEnabled() && !IsHighContrast()) dimmed = TintedCopy(bitmap, kDisabledTextColor);
    ObFlatBtn::DrawImage(dc, dimmed ? dimmed.Get() : bitmap, x, y);
}

ObFlatBrowserBtn::ObFlatBrowserBtn(std::int32_t buttonId)
    : ObFlatBtn(buttonId, ButtonClass::Browser) {}

ObFlatSplitBtn::ObFlatSplitBtn(std::int32_t buttonId)
    : ObFlatSplitBtn(buttonId, ButtonClass::Split) {}

ObFlatSplitBtn::ObFlatSplitBtn(std::int32_t buttonId, ButtonClass buttonClass)
    : ObFlatBtn(buttonId, buttonClass) {}

void ObFlatSplitBtn::UpdateImages() {
    images = ImageSet(
        ImageList(IsEnabled() ? ControlImage::DownArrow : ControlImage::DownArrowDisabled));
}

// Where the arrow's part begins. A button without a text has its arrow in the middle.
void ObFlatSplitBtn::PaintOver(HDC dc, std::int32_t imageLeft) {
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    SendMessageW(window, BCM_GETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info));
    if ((info.uSplitStyle & BCSS_NOSPLIT) != 0) return;
    const PixelRect client = ClientArea(window);
    const bool isStrip = imageRectangle.left > client.left;
    const std::int32_t left = isStrip ? imageRectangle.left : imageLeft - Scaled(padding) / 2;
    const int inset = Scaled(kSeparatorInset);
    FillArea(dc, {left, client.top + inset, left + 1, client.bottom - inset},
             GetPaletteColor(kPaletteGray));
}

ObFlatDropBtn::ObFlatDropBtn(std::int32_t buttonId) : ObFlatSplitBtn(buttonId, ButtonClass::Drop) {}

void ObFlatDropBtn::Attach(HWND attached) {
    ObFlatSplitBtn::Attach(attached);
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    info.uSplitStyle = BCSS_NOSPLIT;
    SendMessageW(window, BCM_SETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info));
}

} // namespace ObLibX

#include "tests/unit/ObLibX/controls/ControlFixture.h"

#include <algorithm>

#include "ObLibX/src/controls/OffscreenPaint.h"

namespace {

using obtest::ImportPatch;

template <class Function>
Function* RealOf(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

BOOL WINAPI FakeParameters(UINT action, UINT size, PVOID data, UINT flags) {
    static const auto real = RealOf<decltype(SystemParametersInfoW)>("SystemParametersInfoW");
    if (action != SPI_GETHIGHCONTRAST) return real(action, size, data, flags);
    static_cast<HIGHCONTRASTW*>(data)->dwFlags = Fakes().isContrast ? HCF_HIGHCONTRASTON : 0;
    return TRUE;
}

UINT_PTR WINAPI FakeSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC call) {
    Fakes().timers.push_back({window, id, milliseconds, call});
    return id;
}

BOOL WINAPI FakeKillTimer(HWND window, UINT_PTR id) {
    return std::erase_if(Fakes().timers, [&](const FakeTimer& timer) {
               return timer.window == window && timer.id == id;
           }) != 0;
}

BOOL WINAPI FakeTrack(TRACKMOUSEEVENT* event) {
    Fakes().tracked.push_back(*event);
    return TRUE;
}

int WINAPI FakeDrawText(HDC dc, LPCWSTR text, int count, RECT* rect, UINT flags) {
    static const auto real = RealOf<decltype(DrawTextW)>("DrawTextW");
    if ((flags & DT_CALCRECT) == 0) {
        Fakes().texts.push_back({text, *rect, flags, GetTextColor(dc)});
    }
    return real(dc, text, count, rect, flags);
}

// Wine reports no state of the keyboard's cues, so this does.
LRESULT CALLBACK ReportCues(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                            DWORD_PTR cues) {
    if (message == WM_QUERYUISTATE) return static_cast<LRESULT>(cues);
    return DefSubclassProc(window, message, wParam, lParam);
}

std::map<std::int32_t, MakeObject>& Makers() {
    static std::map<std::int32_t, MakeObject> makers;
    return makers;
}

std::unique_ptr<ObLibX::ObCustomControl> MakeChosen(HWND window,
                                                    const ObLibX::ControlDescription*) {
    const auto found = Makers().find(GetDlgCtrlID(window));
    return found == Makers().end() ? nullptr : found->second(found->first);
}

} // namespace

ControlFakes& Fakes() {
    static ControlFakes fakes;
    return fakes;
}

struct ControlsTest::Patches {
    ImportPatch<decltype(SystemParametersInfoW)> parameters{"user32.dll", "SystemParametersInfoW",
                                                            &FakeParameters};
    ImportPatch<decltype(SetTimer)> setTimer{"user32.dll", "SetTimer", &FakeSetTimer};
    ImportPatch<decltype(KillTimer)> killTimer{"user32.dll", "KillTimer", &FakeKillTimer};
    ImportPatch<decltype(TrackMouseEvent)> track{"user32.dll", "TrackMouseEvent", &FakeTrack};
    ImportPatch<decltype(DrawTextW)> drawText{"user32.dll", "DrawTextW", &FakeDrawText};
};

ControlsTest::ControlsTest() = default;
ControlsTest::~ControlsTest() = default;

void ControlsTest::SetUp() {
    DialogTest::SetUp();
    Fakes() = ControlFakes();
    patches_ = std::make_unique<Patches>();
    ASSERT_TRUE(patches_->parameters.Ok() && patches_->setTimer.Ok() && patches_->killTimer.Ok() &&
                patches_->track.Ok() && patches_->drawText.Ok());
}

void ControlsTest::TearDown() {
    dialog_.reset();
    EXPECT_TRUE(Fakes().timers.empty()) << "a timer without its window";
    patches_.reset();
    Makers().clear();
    DialogTest::TearDown();
}

void ControlsTest::Dress(const std::map<std::int32_t, MakeObject>& makers) {
    Makers() = makers;
    ObLibX::SetControlMaker({&MakeChosen, nullptr});
}

void ControlsTest::Open(std::int32_t dialogTemplate) {
    dialog_ = std::make_unique<FlatTestDialog>(dialogTemplate);
    dialog_->Create(nullptr);
    ShowWindow(dialog_->window, SW_SHOW);
    UpdateWindow(dialog_->window);
    dialog_->commands.clear();
}

void ControlsTest::HideCues(std::int32_t id, UINT cues) const {
    static const bool isPrinted =
        printf("The state of the keyboard's cues is the test's own (WM_QUERYUISTATE).\n") > 0;
    EXPECT_TRUE(isPrinted);
    SetWindowSubclass(Item(id), &ReportCues, 1, cues);
    Send(id, WM_UPDATEUISTATE, MAKEWPARAM(UIS_SET, cues));
    UpdateWindow(Item(id));
}

SIZE ControlsTest::SizeOf(std::int32_t id) const {
    RECT rect{};
    GetWindowRect(Item(id), &rect);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

COLORREF ControlsTest::PixelOf(std::int32_t id, int x, int y) const {
    const ObLibX::ClientDc dc(Item(id));
    return GetPixel(dc.Get(), x, y);
}

std::vector<COLORREF> ControlsTest::PixelsOf(std::int32_t id) const {
    UpdateWindow(Item(id));
    return ShownPixels(id);
}

std::vector<COLORREF> ControlsTest::ShownPixels(std::int32_t id) const {
    const SIZE size = SizeOf(id);
    const ObLibX::ClientDc shown(Item(id));
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ObLib::UniqueBitmap bitmap(
        CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    BitBlt(dc.Get(), 0, 0, size.cx, size.cy, shown.Get(), 0, 0, SRCCOPY);
    SelectObject(dc.Get(), old);
    const auto* const first = static_cast<const std::uint32_t*>(bits);
    std::vector<COLORREF> pixels(first, first + size.cx * size.cy);
    for (COLORREF& pixel : pixels) {
        pixel = RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
    }
    return pixels;
}

long ControlsTest::CountOf(std::int32_t id, COLORREF color) const {
    return static_cast<long>(std::ranges::count(PixelsOf(id), color));
}

bool ControlsTest::Tick() {
    if (Fakes().timers.empty()) return false;
    const FakeTimer due = Fakes().timers.front();
    due.call(due.window, WM_TIMER, due.id, 0);
    return true;
}

DrawnText ControlsTest::TextOf(std::int32_t id) const {
    Fakes().texts.clear();
    RedrawWindow(Item(id), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    return Fakes().texts.empty() ? DrawnText{} : Fakes().texts.back();
}

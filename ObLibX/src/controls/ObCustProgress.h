// The flat progress bar.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLibX/src/controls/ProgressLayout.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// The timer of a marquee, on the window of the bar.
inline constexpr UINT_PTR kMarqueeTimer = 10551;
inline constexpr UINT kMarqueePeriod = 30; // milliseconds

// On a stock progress bar, which goes on answering all its messages: only what is seen, and how a
// marquee moves, is the object's.
class ObFlatProgressBar : public ObCustomControl {
public:
    explicit ObFlatProgressBar(std::int32_t id);
    ~ObFlatProgressBar() override;

    void Attach(HWND attached) override;
    // White, transparent text.
    HBRUSH OnCtlColor(HDC dc, HWND control) override;
    // WM_PAINT and WM_PRINTCLIENT.
    virtual void Paint(HDC dc);

    bool isMarquee = false; // a marquee runs
    Marquee marquee;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    // True: the message is done with.
    bool OnMessage(UINT message, WPARAM wParam);
    void OnPaint();
    void RunMarquee(bool isOn);
    void Tick();
    [[nodiscard]] bool HasStyle(LONG_PTR style) const;
    [[nodiscard]] COLORREF BarColor() const;
    [[nodiscard]] PixelRect Filled(const PixelRect& area) const;
};

} // namespace ObLibX

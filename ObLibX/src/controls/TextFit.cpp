#include "ObLibX/src/controls/TextFit.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kSmallestFont = 9; // points, of those that are made smaller
constexpr std::int32_t kMostWidening = 3; // pixels at kPlainDpi
constexpr std::int32_t kPlainDpi = 96;
constexpr std::int32_t kRoomBelow = 2; // pixels

bool Fits(const TextSize& text, const TextSize& window) {
    return text.width <= window.width && text.height <= window.height;
}

// As MulDiv: rounded.
std::int32_t ScaledWidening(std::int32_t dpi) {
    return (kMostWidening * dpi + kPlainDpi / 2) / kPlainDpi;
}

TextFit Widened(const TextFit& now, const TextSize& text, std::int32_t dpi) {
    TextFit fit = now;
    const std::int32_t overflow = text.width - now.window.width;
    if (overflow > 0 && dpi > kPlainDpi && overflow <= ScaledWidening(dpi)) {
        fit.window.width = text.width;
    }
    return fit;
}

TextFit Shrunk(const TextFit& now, const MeasureText& measure) {
    TextFit fit = now;
    TextSize text = measure(fit.fontSize, false);
    while (text.width > now.window.width && fit.fontSize > kSmallestFont) {
        text = measure(--fit.fontSize, false);
    }
    // Still too wide: the window breaks it into lines.
    if (text.width > now.window.width) text = measure(fit.fontSize, true);
    if (text.height > now.window.height) fit.window.height = text.height + kRoomBelow;
    return fit;
}

} // namespace

TextFit FitText(const TextFit& now, std::int32_t dpi, const MeasureText& measure) {
    const TextSize text = measure(now.fontSize, true);
    if (Fits(text, now.window)) return now;
    return now.fontSize <= kSmallestFont ? Widened(now, text, dpi) : Shrunk(now, measure);
}

} // namespace ObLibX

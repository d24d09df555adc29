#include "OBCore/transforms/FitPathText.h"

#include <windows.h>

#include <string_view>
#include <utility>

namespace obcore {
namespace {

constexpr std::wstring_view kDots = L"...";
constexpr wchar_t kLineBreak[] = L"\r\n";

// Where the longest part of the path begins that starts at a backslash and still fits. `last`, the
// position of the last backslash, is known to fit.
std::size_t LongestTail(const MeasureText& measure, int width, const std::wstring& path,
                        std::size_t last) {
    std::size_t start = last;
    while (start > 0) {
        const std::size_t before = path.rfind(L'\\', start - 1);
        if (before == std::wstring::npos || measure(path.substr(before)) > width) break;
        start = before;
    }
    return start;
}

// A surrogate pair is one character: neither half stays without the other.
void DropLastCharacter(std::wstring& text) {
    text.pop_back();
    if (!text.empty() && IS_HIGH_SURROGATE(text.back())) text.pop_back();
}

} // namespace

std::wstring EllipsizeEnd(const MeasureText& measure, int width, std::wstring text) {
    if (measure(text) <= width) return text;
    text += kDots;
    while (text.size() > kDots.size() && measure(text) > width) {
        text.resize(text.size() - kDots.size());
        DropLastCharacter(text);
        text += kDots;
    }
    return text;
}

std::wstring FitPathText(const MeasureText& measure, int width, const std::wstring& label,
                         const std::wstring& path) {
    const auto fit = [&](std::wstring text) {
        return EllipsizeEnd(measure, width, std::move(text));
    };
    if (measure(label + path) <= width) return label + path;
    if (measure(path) <= width) return label + kLineBreak + path;
    const std::size_t last = path.rfind(L'\\');
    if (last == std::wstring::npos) return label + kLineBreak + fit(path);
    const bool fits = measure(path.substr(last)) <= width;
    const std::size_t start = fits ? LongestTail(measure, width, path, last) : last;
    return fit(label + path.substr(0, start)) + kLineBreak + fit(path.substr(start));
}

} // namespace obcore

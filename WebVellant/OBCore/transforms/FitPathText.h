// Fitting a text into a given width. Pure text: widths come from the caller's measuring function.
#pragma once

#include <functional>
#include <string>

namespace obcore {

// The width of a text, in any unit.
using MeasureText = std::function<int(const std::wstring& text)>;

// `text` when it is at most `width` wide. Otherwise as much of its beginning as fits with three
// dots at its end; a surrogate pair isn't cut in two. The caller gives a width that is enough for
// the three dots: with less, the three dots alone come back, too wide.
std::wstring EllipsizeEnd(const MeasureText& measure, int width, std::wstring text);

// `label` and `path` as a text of at most two lines, for a control of this width. The last parts of
// the path stay whole for as long as they fit on the second line.
std::wstring FitPathText(const MeasureText& measure, int width, const std::wstring& label,
                         const std::wstring& path);

} // namespace obcore

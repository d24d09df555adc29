#include "services/archive/texts/FormatMessageText.h"

#include "services/archive/ThisModule.h"

namespace obarchive {
namespace {

bool IsPlace(wchar_t unit, std::size_t inserts) {
    return unit >= L'1' && unit <= L'9' && static_cast<std::size_t>(unit - L'1') < inserts;
}

} // namespace

std::wstring FormatMessageText(UINT id, std::initializer_list<std::wstring> inserts) {
    const std::wstring pattern = OwnText(id);
    std::wstring text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const wchar_t next = at + 1 < pattern.size() ? pattern[at + 1] : L'\0';
        if (pattern[at] == L'%' && next == L'%') {
            text += pattern[++at];
        } else if (pattern[at] == L'%' && IsPlace(next, inserts.size())) {
            text += inserts.begin()[pattern[++at] - L'1'];
        } else {
            text += pattern[at];
        }
    }
    return text;
}

} // namespace obarchive

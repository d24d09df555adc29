#include "OBCore/picker/FileTypes.h"

#include <algorithm>

#include "OBCore/modules/TraceFailure.h"

namespace obcore {

std::vector<std::wstring> ReadStringList(const wchar_t* list, const wchar_t* end) {
    std::vector<std::wstring> strings;
    while (list && list < end && *list != L'\0') {
        const wchar_t* const textEnd = std::find(list, end, L'\0');
        strings.emplace_back(list, textEnd);
        if (textEnd == end) break;
        list = textEnd + 1;
    }
    return strings;
}

void SetFileTypes(IFileDialog& dialog, const std::vector<std::wstring>& namesAndPatterns) {
    if (namesAndPatterns.size() % 2 != 0) return;
    std::vector<COMDLG_FILTERSPEC> pairs;
    for (std::size_t index = 0; index < namesAndPatterns.size(); index += 2) {
        pairs.push_back({namesAndPatterns[index].c_str(), namesAndPatterns[index + 1].c_str()});
    }
    TraceFailure("SetFileTypes",
                 dialog.SetFileTypes(static_cast<UINT>(pairs.size()), pairs.data()));
}

} // namespace obcore

#include "OBCore/picker/FileTypes.h"

#include "OBCore/modules/TraceFailure.h"
#include "ObLib/Src/Win32/StringList.h"

namespace obcore {

std::vector<std::wstring> ReadStringList(const wchar_t* list, const wchar_t* end) {
    std::vector<std::wstring> strings;
    if (!list || list >= end) return strings;
    ObLib::WalkList({list, static_cast<std::size_t>(end - list)},
                    [&](std::wstring_view text) { strings.emplace_back(text); });
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

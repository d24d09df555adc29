#include "services/providers/webdav/PickerRows.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "services/providers/dav/UnshownCharacters.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/webdav/DavUpload.h"

namespace providers {
namespace {

// ".", ".." and the empty name begin with a dot or with nothing.
bool IsLeftOut(const DavItem& item) {
    return item.name.empty() || item.name.front() == L'.' ||
           (!item.isFolder && IsPartName(ToUtf8(item.name)));
}

bool IsBefore(const PickerRow& left, const PickerRow& right) {
    if (left.item.isFolder != right.item.isFolder) return left.item.isFolder;
    const int order = StrCmpLogicalW(left.name.c_str(), right.name.c_str());
    return order != 0 ? order < 0 : left.item.name < right.item.name;
}

bool BeginsWith(const std::wstring& name, std::wstring_view typed) {
    const int length = static_cast<int>(typed.size());
    return name.size() >= typed.size() &&
           CompareStringOrdinal(name.c_str(), length, typed.data(), length, TRUE) == CSTR_EQUAL;
}

} // namespace

std::wstring ShownName(const std::wstring& name) {
    std::wstring shown = name;
    std::replace_if(shown.begin(), shown.end(), &IsUnshown, L'\uFFFD');
    return shown;
}

std::vector<PickerRow> RowsOf(std::vector<DavItem> items) {
    std::vector<PickerRow> rows;
    rows.reserve(items.size());
    for (DavItem& item : items) {
        if (IsLeftOut(item)) continue;
        std::wstring shown = ShownName(item.name);
        rows.push_back({std::move(item), std::move(shown)});
    }
    // The shell's order of odd names needn't be consistent, which std::sort takes for granted; a
    // stable sort stays within its range all the same.
    std::stable_sort(rows.begin(), rows.end(), &IsBefore);
    return rows;
}

std::optional<std::size_t> FindRow(std::span<const PickerRow> rows, std::wstring_view typed,
                                   std::size_t start) {
    for (std::size_t step = 0; step < rows.size(); ++step) {
        const std::size_t index = (start + step) % rows.size();
        if (BeginsWith(rows[index].name, typed)) return index;
    }
    return std::nullopt;
}

} // namespace providers

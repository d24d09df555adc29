#include <numeric>

#include "OBCore/modules/Messages.h"
#include "OBCore/planning/OBOpenFileNameDlg.h"

namespace obcore::CompressUtils {
namespace {

using Items = std::vector<std::wstring>;

std::size_t NameStart(const std::wstring& path) { return path.rfind(L'\\') + 1; }

// The first file's folder, then the bare names; files of other folders lose theirs.
Items FolderAndNames(const Items& files) {
    Items items = {files.front().substr(0, NameStart(files.front()))};
    for (const std::wstring& file : files) items.push_back(file.substr(NameStart(file)));
    return items;
}

// Wide characters of a list with every item's NUL and the closing one.
std::size_t ListLength(const Items& items) {
    return std::accumulate(
        items.begin(), items.end(), std::size_t{1},
        [](std::size_t length, const std::wstring& item) { return length + item.size() + 1; });
}

void WriteList(const Items& items, wchar_t* target) {
    for (const std::wstring& item : items) {
        target += item.copy(target, item.size());
        *target++ = L'\0';
    }
    *target = L'\0';
}

} // namespace

int FillOpenFileNameBuffer(const OBAttachJob& job, OPENFILENAMEW& request, const wchar_t* end) {
    const Items& files = job.Files;
    if (!Check(!files.empty(), "files.size() > 0", "OBCore\\CompressUtils", 142)) return 0;
    const bool single = files.size() == 1;
    const Items items = single ? files : FolderAndNames(files);
    const std::size_t length = ListLength(items);
    if (!request.lpstrFile || request.lpstrFile >= end) return 0;
    if (length > static_cast<std::size_t>(end - request.lpstrFile)) return 0;
    // The caller's own word on its room counts for several files only.
    if (!single && length >= request.nMaxFile) return 0;
    WriteList(items, request.lpstrFile);
    return 1;
}

} // namespace obcore::CompressUtils

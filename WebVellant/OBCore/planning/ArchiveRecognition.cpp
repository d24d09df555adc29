#include <algorithm>
#include <string_view>

#include "OBCore/planning/OBOpenFileNameDlg.h"

namespace obcore::CompressUtils {
namespace {

constexpr std::wstring_view kArchiveExtensions[] = {L".zip", L".zipx", L".rar", L".7z"};

} // namespace

bool IsAlreadyArchive(OBAttachJob& job, const std::wstring& path) {
    const std::size_t point = path.rfind(L'.');
    if (point == std::wstring::npos) return false;
    const std::wstring_view extension = std::wstring_view(path).substr(point);
    if (std::ranges::find(kArchiveExtensions, extension) == std::end(kArchiveExtensions)) {
        return false;
    }
    const std::size_t nameStart = path.rfind(L'\\') + 1; // 0 without a separator
    job.ResultIsArchive = true;
    job.ResultPath = path;
    job.ResultName = path.substr(nameStart);
    job.ResultFolder = path.substr(0, nameStart);
    job.SendItem = true;
    return true;
}

} // namespace obcore::CompressUtils

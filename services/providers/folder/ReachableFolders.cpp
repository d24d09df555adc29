#include "services/providers/folder/ReachableFolders.h"

#include <algorithm>

#include "ObLib/Src/Win32/LongPath.h"
#include "services/providers/worker/DetachedCall.h"

namespace providers {
namespace {

constexpr DWORD kTick = 20; // milliseconds between two looks at the calls

bool IsThere(const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(ObLib::WithLongPathPrefix(folder).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace

std::vector<bool> ReachableFolders(const std::vector<std::wstring>& folders,
                                   const ReachLimits& limits) {
    std::vector<DetachedCall<bool>> calls;
    for (const std::wstring& folder : folders) {
        calls.emplace_back([folder](HANDLE) { return IsThere(folder); });
    }
    std::vector<bool> reached(folders.size());
    std::vector<bool> isSettled(folders.size());
    for (const ULONGLONG start = GetTickCount64();; Sleep(kTick)) {
        for (std::size_t index = 0; index < calls.size(); ++index) {
            if (isSettled[index] || !calls[index].IsDone()) continue;
            isSettled[index] = true;
            reached[index] = calls[index].Take().value_or(false);
        }
        const bool hasOne = std::ranges::find(reached, true) != reached.end();
        const bool isOver = GetTickCount64() - start >= (hasOne ? limits.all : limits.none);
        if (isOver || std::ranges::find(isSettled, false) == isSettled.end()) return reached;
    }
}

} // namespace providers

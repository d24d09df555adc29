#include "services/providers/suite/WholePdf.h"

#include <algorithm>
#include <string_view>

#include "ObLib/Src/Win32/LongPath.h"
#include "services/providers/files/FirstBytes.h"
#include "services/providers/suite/FileContent.h"

namespace providers {
namespace {

constexpr std::string_view kEnd = "%%EOF";
constexpr std::uint64_t kTail = 1024; // bytes; readers look for the end mark in as many

} // namespace

bool IsWholePdf(HANDLE file) {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(file, &size) || size.QuadPart <= 0) return false;
    const auto all = static_cast<std::uint64_t>(size.QuadPart);
    return BeginsAsPdf(file) &&
           BytesAt(file, all - std::min(all, kTail), kTail).find(kEnd) != std::string::npos;
}

ObLib::UniqueKernelHandle OpenWholePdf(const std::wstring& path) {
    ObLib::UniqueKernelHandle made(CreateFileW(
        ObLib::WithLongPathPrefix(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!made || !IsWholePdf(made.Get())) return {};
    return made;
}

TakenPdf TakePdf(HANDLE made, HANDLE target, CallWait& wait) {
    switch (CopyContent(made, target, [&] { return wait.IsEnded(); })) {
    case CopiedContent::Whole:
        return TakenPdf::Taken;
    case CopiedContent::Unwritable:
        return TakenPdf::Unwritable;
    case CopiedContent::Ended:
        return TakenPdf::Ended;
    default:
        return TakenPdf::NotWhole;
    }
}

} // namespace providers

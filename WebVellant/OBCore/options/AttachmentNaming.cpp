#include "OBCore/options/AttachmentNaming.h"

#include <windows.h>

#include <shlwapi.h>

#include "ObLib/Src/Win32/FailFast.h"

using obcontract::kCompressionZipx;

namespace obcore {
namespace {

constexpr int kTokenCapacity = 257; // wide characters
constexpr std::size_t kSinglePathCapacity = 301;

// Either picture may be null: that part is left out.
struct TokenPictures {
    const wchar_t* date;
    const wchar_t* time;
};

// Indexed by NameAppendKind.
constexpr TokenPictures kTokens[] = {
    {nullptr, nullptr},     {L"yy-MM-dd", nullptr},        {L"yyyy-MM-dd", nullptr},
    {nullptr, L"hh-mm-ss"}, {L"yyyy-MM-dd", L"-HH-mm-ss"},
};

std::wstring FormatDate(const SYSTEMTIME& now, const wchar_t* picture) {
    wchar_t text[kTokenCapacity] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, 0, &now, picture, text, kTokenCapacity);
    return text;
}

// The flag makes "hh" count 24 hours too.
std::wstring FormatTime(const SYSTEMTIME& now, const wchar_t* picture) {
    wchar_t text[kTokenCapacity] = {};
    GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_FORCE24HOURFORMAT, &now, picture, text,
                   kTokenCapacity);
    return text;
}

std::wstring ExtensionOf(const OBOptions& options) {
    if (options.UseAltExt) return L"." + options.AltExt;
    return options.CompressionMethod < kCompressionZipx ? L".zip" : L".zipx";
}

bool KeepsItsOwnName(const OBAttachJob& job) {
    return job.MakesZip() && job.Files.size() == 1 && job.SingleAttachFileName;
}

// The name is renamed in a buffer of its own, with the room that the platform's call may use. A
// name that doesn't take the extension within that call's 260 characters stays as it is.
std::wstring NameOfSingleFile(const std::wstring& file, const std::wstring& extension) {
    wchar_t path[kSinglePathCapacity];
    ObLib::CopyOrFailFast(path, kSinglePathCapacity, file.c_str());
    wchar_t name[kSinglePathCapacity + MAX_PATH];
    ObLib::CopyOrFailFast(name, kSinglePathCapacity, PathFindFileNameW(path));
    PathRenameExtensionW(name, extension.c_str());
    return name;
}

} // namespace

std::wstring MakeNameToken(NameAppendKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    if (index >= std::size(kTokens)) return {};
    SYSTEMTIME now;
    GetLocalTime(&now);
    std::wstring token;
    if (kTokens[index].date) token += FormatDate(now, kTokens[index].date);
    if (kTokens[index].time) token += FormatTime(now, kTokens[index].time);
    return token;
}

bool CompressUtils::BuildAttachmentName(const OBAttachJob& job, std::wstring& name) {
    if (job.Files.empty()) return false;
    const bool zips = job.MakesZip();
    if (!zips && job.Files.size() >= 2 && !job.NameWithoutArchive) return false;
    const std::wstring extension = ExtensionOf(job);
    name = job.DefaultZipName + MakeNameToken(job.NameAppend) + extension;
    if (KeepsItsOwnName(job)) name = NameOfSingleFile(job.Files.front(), extension);
    return true;
}

} // namespace obcore

#include "OBCore/usage/UsageEvents.h"

#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/FailFast.h"

namespace obcore {
namespace {

// Pairs `key=value` in the room that a report has. What doesn't fit ends the process.
class ReportText {
public:
    explicit ReportText(const wchar_t* start) { ObLib::CopyOrFailFast(text_, kCapacity, start); }
    ReportText& Append(const wchar_t* more) {
        ObLib::AppendOrFailFast(text_, kCapacity, more);
        return *this;
    }
    const wchar_t* Get() const { return text_; }

private:
    static constexpr std::size_t kCapacity = 260; // wide characters

    wchar_t text_[kCapacity];
};

const wchar_t* YesOrNo(bool value) { return value ? L"yes" : L"no"; }

ReportText FileSendText(const UsageFlags& flags) {
    ReportText text(L"file-send.type=");
    text.Append(flags.UsageLink ? L"link" : L"attachment");
    if (flags.UsageZipped) {
        text.Append(L"|file-send.encryption=").Append(YesOrNo(flags.UsageEncrypted));
        text.Append(L"|file-send.compression=").Append(flags.UsageZipx ? L"zipx" : L"zip");
    }
    text.Append(L"|file-send.expiry=").Append(YesOrNo(flags.UsageExpiry));
    return text;
}

// `chrome` out of a path that ends in `\chrome.exe`; empty when the file name has no dot.
std::wstring ShortBrowserName(const std::wstring& imagePath) {
    const std::size_t separator = imagePath.rfind(L'\\');
    const std::size_t dot = imagePath.rfind(L'.');
    if (separator == std::wstring::npos || dot == std::wstring::npos || dot < separator) return {};
    return imagePath.substr(separator + 1, dot - separator - 1);
}

} // namespace

void ReportFileSend(const UsageFlags& flags, const std::wstring& source) {
    if (!LoadArchiveService()) return;
    ArchiveService().LogAppletFeature(L"feature.file-send", FileSendText(flags).Get());
    if (source.empty()) return;
    ReportText text(L"email-share.source=");
    text.Append(source.c_str());
    ArchiveService().LogAppletFeature(L"feature.email-share", text.Get());
}

void ReportUsage(const OBAttachJob& job) {
    ReportFileSend(job.Usage, ShortBrowserName(job.BrowserImagePath));
}

void ReportCloudUse(const std::wstring& displayName) {
    if (!LoadArchiveService()) return;
    ReportText text(L"cloud.name=");
    text.Append(displayName.c_str());
    ArchiveService().LogAppletFeature(L"feature.cloud", text.Get());
}

} // namespace obcore

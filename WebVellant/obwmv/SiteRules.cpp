#include "obwmv/SiteRules.h"

#include <string_view>

#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/StringList.h"
#include "obwmv/SiteHosts.h"

namespace obwmv {
namespace {

bool Contains(std::wstring_view text, std::wstring_view part) noexcept {
    return text.find(part) != std::wstring_view::npos;
}

enum class Answer { Picker, BrowserDialog };

Answer AlwaysPicker(std::wstring_view) noexcept { return Answer::Picker; }

// The settings pages and the print view aren't places where a file is attached.
Answer GmailAnswer(std::wstring_view url) noexcept {
    if (Contains(url, L"#settings")) return Answer::BrowserDialog;
    const bool printView =
        Contains(url, L"ui=1") && Contains(url, L"view=ap") && Contains(url, L"ov=pr");
    return printView ? Answer::BrowserDialog : Answer::Picker;
}

// Tried in order: the first row whose host is part of the page's host decides. On any other page
// the browser's own dialog answers.
struct SiteRule {
    std::wstring_view host;
    Answer (*answer)(std::wstring_view url) noexcept;
};

constexpr SiteRule kSiteRules[] = {
    {kGmailHost, &GmailAnswer},       {kYahooMailHost, &AlwaysPicker},
    {kOldOutlookHost, &AlwaysPicker}, {kOutlookHost, &AlwaysPicker},
    {kOfficeMailHost, &AlwaysPicker}, {kOffice365MailHost, &AlwaysPicker},
    {kZohoMailHost, &AlwaysPicker},
};

consteval bool EveryRuleNamesAHost() {
    for (const SiteRule& rule : kSiteRules)
        if (rule.host.empty()) return false;
    return true;
}
static_assert(EveryRuleNamesAHost(), "an empty host would match every page");

// From the end of the first "//" to the next "/" or the end of the URL, with port, user part and
// query if the URL has them there. Empty when there is no "//".
std::wstring_view HostText(std::wstring_view url) noexcept {
    const std::size_t slashes = url.find(L"//");
    if (slashes == std::wstring_view::npos) return {};
    const std::wstring_view rest = url.substr(slashes + 2);
    return rest.substr(0, rest.find(L'/'));
}

Answer AnswerFor(std::wstring_view url) noexcept {
    const std::wstring_view host = HostText(url);
    for (const SiteRule& rule : kSiteRules)
        if (Contains(host, rule.host)) return rule.answer(url);
    return Answer::BrowserDialog;
}

// The page's own upload dialog for files that go to a file service, not into a mail.
bool NamesUploadFiles(const wchar_t* filter) noexcept {
    return ObLib::AnyOfList(filter, [](std::wstring_view text) noexcept {
        return Contains(text, L"YouSendIt Supported Files");
    });
}

} // namespace

bool UsesBrowserDialog(const wchar_t* url) {
    if (AnswerFor(url) == Answer::BrowserDialog) return true;
    return !obcore::LoadArchiveService();
}

bool IsLinkForbidden(const wchar_t* url, const wchar_t* filter) {
    const std::wstring_view page = url;
    if (Contains(page, kGmailHost) && Contains(page, L"/h") && Contains(page, L"view=amf"))
        return true;
    return filter && NamesUploadFiles(filter);
}

} // namespace obwmv

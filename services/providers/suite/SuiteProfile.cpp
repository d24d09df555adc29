#include "services/providers/suite/SuiteProfile.h"

#include <string_view>

#include "ObLib/Src/PercentEncoding.h"
#include "ObLib/Src/Win32/Utf8.h"

namespace providers {
namespace {

struct Setting {
    std::string_view path; // below org.openoffice
    std::string_view name;
    std::string_view value;
};

// The numbers of the two "Link" settings mean "never"; their lists differ.
constexpr Setting kSettings[] = {
    {"Office.Common/Security/Scripting", "MacroSecurityLevel", "3"},
    {"Office.Common/Security/Scripting", "DisableMacrosExecution", "true"},
    {"Office.Common/Security/Scripting", "DisableActiveContent", "true"}, // newer versions know it
    {"Office.Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"},
    {"Office.Writer/Content/Update", "Link", "0"},
    {"Office.WriterWeb/Content/Update", "Link", "0"},
    {"Office.Calc/Content/Update", "Link", "1"},
    {"Office.Common/Misc", "FirstRun", "false"},
    // With the profile of an earlier version the suite begins with tests of its drawing, which take
    // several times as long as a document.
    {"Setup/Product", "ooSetupLastVersion", "9999.0"},
    {"Office.Common/Save/Document", "CreateBackup", "false"},
};

constexpr std::string_view kBegin = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\" "
                                    "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
                                    "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
constexpr std::string_view kEnd = "</oor:items>\n";

bool IsPlain(char sign) { return ObLib::IsUnreserved(sign) || sign == '/' || sign == ':'; }

} // namespace

std::string SuiteProfile() {
    std::string text(kBegin);
    for (const Setting& setting : kSettings) {
        text += "<item oor:path=\"/org.openoffice.";
        text += setting.path;
        text += "\"><prop oor:name=\"";
        text += setting.name;
        text += "\" oor:op=\"fuse\"><value>";
        text += setting.value;
        text += "</value></prop></item>\n";
    }
    return text.append(kEnd);
}

std::string FileUrl(const std::wstring& path) {
    std::string url = path.starts_with(L"\\\\") ? "file:" : "file:///";
    for (const char byte : ObLib::ToUtf8(path)) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\\') {
            url += '/';
        } else if (IsPlain(byte)) {
            url += byte;
        } else {
            (url += '%').append({kDigits[value >> 4], kDigits[value & 15]});
        }
    }
    return url;
}

} // namespace providers

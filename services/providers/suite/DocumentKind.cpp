#include "services/providers/suite/DocumentKind.h"

#include <string_view>

#include "services/providers/files/FirstBytes.h"
#include "services/providers/files/ResultName.h"

namespace providers {
namespace {

// What a document may begin with, each a bit.
enum Beginning : unsigned {
    kPackage = 1,   // a zip
    kContainer = 2, // the older container; a package with a password is one as well
    kRich = 4,
};

struct BeginningForm {
    Beginning beginning;
    std::string_view bytes;
};
constexpr BeginningForm kBeginnings[] = {
    {kPackage, "PK\x03\x04"},
    {kContainer, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"},
    {kRich, "{\\rtf"},
};

// Older names are often given to newer documents, and programs open those.
struct DocumentForm {
    OfficeDocument document;
    unsigned beginnings;
};
constexpr DocumentForm kDocuments[] = {
    {{DocumentKind::Text, L"docx"}, kPackage | kContainer},
    {{DocumentKind::Text, L"docm"}, kPackage | kContainer},
    {{DocumentKind::Text, L"doc"}, kPackage | kContainer | kRich},
    {{DocumentKind::Text, L"odt"}, kPackage},
    {{DocumentKind::Text, L"rtf"}, kRich},
    {{DocumentKind::Table, L"xlsx"}, kPackage | kContainer},
    {{DocumentKind::Table, L"xlsm"}, kPackage | kContainer},
    {{DocumentKind::Table, L"xls"}, kPackage | kContainer},
    {{DocumentKind::Table, L"ods"}, kPackage},
    {{DocumentKind::Slides, L"pptx"}, kPackage | kContainer},
    {{DocumentKind::Slides, L"pptm"}, kPackage | kContainer},
    {{DocumentKind::Slides, L"ppt"}, kPackage | kContainer},
    {{DocumentKind::Slides, L"odp"}, kPackage},
};

// 0: none of them.
unsigned BeginningOf(HANDLE source) {
    const std::string begin = FirstBytes(source, 8);
    for (const BeginningForm& form : kBeginnings) {
        if (begin.starts_with(form.bytes)) return form.beginning;
    }
    return 0;
}

} // namespace

std::optional<OfficeDocument> DocumentOf(HANDLE source, const std::wstring& name) {
    for (const DocumentForm& form : kDocuments) {
        if (!HasExtension(name, form.document.extension)) continue;
        if (form.beginnings & BeginningOf(source)) return form.document;
        return {};
    }
    return {};
}

} // namespace providers

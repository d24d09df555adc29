#include "services/providers/ui/ReceiptText.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

struct FoundRow {
    std::string_view key; // of the work process
    UINT text;
};

constexpr FoundRow kFound[] = {
    {"position", OB_TEXT_FOUND_POSITION},
    {"camera", OB_TEXT_FOUND_CAMERA},
    {"camera-settings", OB_TEXT_FOUND_CAMERA_SETTINGS},
    {"maker-notes", OB_TEXT_FOUND_MAKER_NOTES},
    {"time", OB_TEXT_FOUND_TIME},
    {"person", OB_TEXT_FOUND_PERSON},
    {"software", OB_TEXT_FOUND_SOFTWARE},
    {"description", OB_TEXT_FOUND_DESCRIPTION},
    {"thumbnail", OB_TEXT_FOUND_THUMBNAIL},
    {"other-pictures", OB_TEXT_FOUND_OTHER_PICTURES},
    {"xmp", OB_TEXT_FOUND_XMP},
    {"iptc", OB_TEXT_FOUND_IPTC},
    {"comment", OB_TEXT_FOUND_COMMENT},
    {"text", OB_TEXT_FOUND_TEXT},
    {"credentials", OB_TEXT_FOUND_CREDENTIALS},
    {"application-data", OB_TEXT_FOUND_APPLICATION_DATA},
    {"private-data", OB_TEXT_FOUND_PRIVATE_DATA},
    {"stray-bytes", OB_TEXT_FOUND_STRAY_BYTES},
    {"trailing-data", OB_TEXT_FOUND_TRAILING_DATA},
    {"local-path", OB_TEXT_FOUND_LOCAL_PATH},
    {"revision-ids", OB_TEXT_FOUND_REVISION_IDS},
    {"authors", OB_TEXT_FOUND_AUTHORS},
    {"printer-settings", OB_TEXT_FOUND_PRINTER_SETTINGS},
    {"old-versions", OB_TEXT_FOUND_OLD_VERSIONS},
    {"document-id", OB_TEXT_FOUND_DOCUMENT_ID},
    {"properties", OB_TEXT_FOUND_PROPERTIES},
    {"change-history", OB_TEXT_FOUND_CHANGE_HISTORY},
    {"file-structure", OB_TEXT_FOUND_FILE_STRUCTURE},
    {"stays.deleted-text", OB_TEXT_STAYS_DELETED_TEXT},
    {"stays.hidden-sheets", OB_TEXT_STAYS_HIDDEN_SHEETS},
    {"stays.hidden-slides", OB_TEXT_STAYS_HIDDEN_SLIDES},
    {"stays.hidden-text", OB_TEXT_STAYS_HIDDEN_TEXT},
    {"stays.comments", OB_TEXT_STAYS_COMMENTS},
    {"stays.embedded-files", OB_TEXT_STAYS_EMBEDDED_FILES},
    {"stays.macros", OB_TEXT_STAYS_MACROS},
    {"stays.custom-data", OB_TEXT_STAYS_CUSTOM_DATA},
};

// A key that begins so names content, which no request removes.
constexpr std::string_view kStays = "stays.";

constexpr wchar_t kLineBreak[] = L"\r\n";
constexpr wchar_t kIndent[] = L"      ";

std::ptrdiff_t CountOf(const std::vector<ReceiptFile>& files, WorkResult result) {
    return std::ranges::count(files, result, &ReceiptFile::result);
}

// A line with the file's name, and one for each finding that stays or that doesn't; empty without
// any.
std::wstring Lines(const ReceiptFile& file, UINT heading, bool staying) {
    std::wstring lines;
    for (const WorkFound& found : file.found) {
        if (found.key.starts_with(kStays) != staying) continue;
        if (lines.empty()) lines = FormatOwnText(heading, {file.name});
        lines += kLineBreak + (kIndent + FoundText(found));
    }
    return lines;
}

std::wstring CleanedFile(const ReceiptFile& file) {
    std::wstring removed = Lines(file, OB_TEXT_RECEIPT_REMOVED, false);
    if (removed.empty()) removed = FormatOwnText(OB_TEXT_RECEIPT_FILE_CLEAN, {file.name});
    const std::wstring stays = Lines(file, OB_TEXT_RECEIPT_STAYS, true);
    return stays.empty() ? removed : removed + kLineBreak + stays;
}

} // namespace

std::wstring RestReason(WorkResult result) {
    switch (result) {
    case WorkResult::NotSupported:
        return OwnText(OB_TEXT_REST_KIND);
    case WorkResult::Damaged:
        return OwnText(OB_TEXT_REST_DAMAGED);
    case WorkResult::TooLarge:
        return OwnText(OB_TEXT_REST_TOO_LARGE);
    case WorkResult::Encrypted:
    case WorkResult::OtherCipher:
        return OwnText(OB_TEXT_REST_ENCRYPTED);
    case WorkResult::Locked:
        return OwnText(OB_TEXT_REST_LOCKED);
    case WorkResult::Signed:
        return OwnText(OB_TEXT_REST_SIGNED);
    default:
        return OwnText(OB_TEXT_REST_FAILED);
    }
}

std::wstring FoundText(const WorkFound& found) {
    const auto row = std::ranges::find(kFound, found.key, &FoundRow::key);
    const std::wstring text = OwnText(row == std::end(kFound) ? OB_TEXT_FOUND_OTHER : row->text);
    if (found.count == 1) return text;
    return FormatOwnText(OB_TEXT_RECEIPT_COUNTED, {text, std::to_wstring(found.count)});
}

std::wstring ReceiptHeadline(const std::vector<ReceiptFile>& files) {
    const auto rest = std::ranges::count_if(files, &ReceiptFile::IsRest);
    const auto cleaned = CountOf(files, WorkResult::Changed);
    if (rest == 1) return OwnText(OB_TEXT_RECEIPT_ONE_REST);
    if (rest > 1) return FormatOwnText(OB_TEXT_RECEIPT_RESTS, {std::to_wstring(rest)});
    if (cleaned == 0) return OwnText(OB_TEXT_RECEIPT_NOTHING);
    if (files.size() == 1) return OwnText(OB_TEXT_RECEIPT_THE_FILE);
    const UINT text = cleaned == 1 ? OB_TEXT_RECEIPT_ONE_CLEANED : OB_TEXT_RECEIPT_CLEANED;
    return FormatOwnText(text, {std::to_wstring(cleaned), std::to_wstring(files.size())});
}

std::wstring ReceiptList(const std::vector<ReceiptFile>& files, bool onlyRest) {
    std::wstring list;
    for (const ReceiptFile& file : files) {
        if (!file.IsRest()) continue;
        list += FormatOwnText(OB_TEXT_RECEIPT_REST_LINE, {file.name, RestReason(file.result)});
        list += kLineBreak;
    }
    for (const ReceiptFile& file : files) {
        if (!onlyRest && !file.IsRest()) list += CleanedFile(file) + kLineBreak;
    }
    return list;
}

} // namespace providers

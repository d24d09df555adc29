#include "demo/mailpage/LinkText.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace mailpage {
namespace {

constexpr std::wstring_view kUploaded = L"0| |";
constexpr std::wstring_view kGroup = L"| |";
constexpr std::wstring_view kPopupBegin = L"#POPUP_MESSAGE_BEGIN#";
constexpr std::wstring_view kPopupEnd = L"#POPUP_MESSAGE_END#";
constexpr std::size_t kSentences = 5; // after the link of an uploaded file

std::vector<std::wstring> Split(std::wstring_view text, std::wstring_view separator) {
    std::vector<std::wstring> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    return parts;
}

std::wstring Joined(const std::vector<std::wstring>& parts, std::size_t count,
                    const wchar_t* separator) {
    std::wstring text;
    for (std::size_t index = 0; index < count; ++index) {
        text += (index == 0 ? L"" : separator) + parts[index];
    }
    return text;
}

void AddLine(std::wstring& message, const std::wstring& line) {
    if (!line.empty()) message += line + L'\n';
}

// One file: NAME|LINK|SENTENCE|... What comes before the link is its name, which may have
// separators.
bool ReadGroup(std::wstring_view group, LinkText& result) {
    const std::vector<std::wstring> fields = Split(group, L"|");
    // The field after the sentences is that of the popup, which has been cut off.
    if (fields.size() < 2 + kSentences + 1 || !fields.back().empty()) return false;
    const std::size_t link = fields.size() - kSentences - 2;
    const LinkedFile file{Joined(fields, link, L"|"), fields[link]};
    if (!result.message.empty()) result.message += L'\n';
    AddLine(result.message, file.name);
    AddLine(result.message, file.link);
    for (std::size_t index = link + 1; index + 1 < fields.size(); ++index) {
        AddLine(result.message, fields[index]);
    }
    result.files.push_back(file);
    return true;
}

std::optional<LinkText> ReadUploaded(std::wstring_view text) {
    if (!text.starts_with(kUploaded)) return std::nullopt;
    LinkText result;
    for (std::wstring_view rest = text.substr(1); !rest.empty();) {
        const std::size_t begin = rest.find(kPopupBegin);
        const std::size_t end = rest.find(kPopupEnd);
        if (!rest.starts_with(kGroup) || end == rest.npos || begin > end) return std::nullopt;
        if (!ReadGroup(rest.substr(kGroup.size(), begin - kGroup.size()), result)) {
            return std::nullopt;
        }
        const std::size_t popup = begin + kPopupBegin.size();
        result.popup = rest.substr(popup, end - popup);
        rest.remove_prefix(end + kPopupEnd.size());
    }
    return result;
}

// "NAME LINK": a link has no blank.
LinkedFile ReadPicked(const std::wstring& record) {
    const std::size_t blank = record.rfind(L' ');
    if (blank == record.npos) return {record, L""};
    return {record.substr(0, blank), record.substr(blank + 1)};
}

std::optional<LinkText> ReadPickedFiles(std::wstring_view text) {
    const std::vector<std::wstring> parts = Split(text, L"|||");
    if (!text.starts_with(L"||") || parts.size() != 3) return std::nullopt;
    LinkText result;
    for (const std::wstring& record : Split(std::wstring_view(parts[0]).substr(2), L"||")) {
        result.files.push_back(ReadPicked(record));
        AddLine(result.message, result.files.back().name);
        AddLine(result.message, result.files.back().link);
    }
    std::vector<std::wstring> providers = Split(parts[2], L"||");
    std::erase(providers, L"");
    AddLine(result.message, L'\n' + parts[1] + Joined(providers, providers.size(), L", "));
    return result;
}

} // namespace

LinkText ReadLinkText(const std::wstring& text) {
    if (auto uploaded = ReadUploaded(text)) return *uploaded;
    if (auto picked = ReadPickedFiles(text)) return *picked;
    return {{{L"", text}}, text, L""};
}

} // namespace mailpage

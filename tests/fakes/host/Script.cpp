#include "tests/fakes/host/Script.h"

#include <cwchar>

namespace obtest {
namespace {

// Blanks separate words; a quoted word ends at the next quotation mark.
std::vector<std::wstring> Words(const std::wstring& line) {
    std::vector<std::wstring> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(L" \t\r", at)) != std::wstring::npos) {
        const bool quoted = line[at] == L'"';
        if (quoted) ++at;
        const std::size_t end = line.find_first_of(quoted ? L"\"" : L" \t\r", at);
        words.push_back(line.substr(at, end == std::wstring::npos ? end : end - at));
        if (end == std::wstring::npos) break;
        at = end + (quoted ? 1 : 0);
    }
    return words;
}

} // namespace

std::vector<HostCommand> ParseHostScript(const std::wstring& script) {
    std::vector<HostCommand> commands;
    std::size_t at = 0;
    while (at < script.size()) {
        const std::size_t end = script.find(L'\n', at);
        const std::wstring line = script.substr(at, end == std::wstring::npos ? end : end - at);
        at = end == std::wstring::npos ? script.size() : end + 1;
        std::vector<std::wstring> words = Words(line);
        if (words.empty() || words[0].starts_with(L'#')) continue;
        std::wstring name = std::move(words[0]);
        words.erase(words.begin());
        commands.push_back({line, std::move(name), std::move(words)});
    }
    return commands;
}

std::int64_t HostNumber(const std::wstring& text) { return std::wcstoll(text.c_str(), nullptr, 0); }

} // namespace obtest

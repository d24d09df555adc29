#include "tests/fakes/archive/Answers.h"

#include <windows.h>

#include <optional>

#include "tests/fakes/Recording.h"

namespace fakes {
namespace {

std::string Narrow(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int bytes =
        WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), units, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}

} // namespace

std::wstring Record(const wchar_t* call, const std::wstring& arguments) {
    std::wstring line = std::wstring(call) + L"(" + arguments + L")";
    obtest::RecordCall(line);
    return line;
}

std::uint64_t AnswerOf(const std::wstring& line, const wchar_t* call, std::uint64_t otherwise) {
    return obtest::ScriptedNumber(line.c_str(), obtest::ScriptedNumber(call, otherwise));
}

bool GiveNarrowText(const wchar_t* key, const wchar_t* otherwise, char* buffer,
                    std::size_t capacity) {
    const std::optional<std::wstring> scripted = obtest::ScriptedAnswer(key);
    if ((!scripted && !otherwise) || capacity == 0) return false;
    const std::string text = Narrow(scripted ? *scripted : std::wstring(otherwise));
    const std::size_t copied = text.copy(buffer, capacity - 1);
    buffer[copied] = '\0';
    return true;
}

std::wstring NarrowText(const char* text) {
    if (!text) return L"null";
    const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), units);
    return obtest::Quoted(wide.c_str());
}

std::wstring Number(std::uint64_t number) { return std::to_wstring(number); }

std::wstring Context(std::uint64_t context) { return L"context" + Number(context); }

} // namespace fakes

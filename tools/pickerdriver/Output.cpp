#include "tools/pickerdriver/Output.h"

#include <windows.h>

namespace pickerdriver {

std::string ToUtf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0'); // a UTF-16 unit takes three bytes at most
    const int count = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

std::wstring FromUtf8(const std::string& text) {
    const int length = static_cast<int>(text.size());
    std::wstring units(text.size(), L'\0');
    const int count = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, units.data(), length);
    units.resize(static_cast<std::size_t>(count));
    return units;
}

// By the system's call: the runtime's streams stop at characters outside their code page.
void Say(const std::wstring& line) {
    const std::string bytes = ToUtf8(line + L"\n");
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()),
              &written, nullptr);
}

} // namespace pickerdriver

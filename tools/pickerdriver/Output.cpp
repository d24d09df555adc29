#include "tools/pickerdriver/Output.h"

#include <windows.h>

#include "ObLib/Src/Win32/Utf8.h"

namespace pickerdriver {

std::wstring FromUtf8(const std::string& text) {
    const int length = static_cast<int>(text.size());
    std::wstring units(text.size(), L'\0');
    const int count = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, units.data(), length);
    units.resize(static_cast<std::size_t>(count));
    return units;
}

// By the system's call: the runtime's streams stop at characters outside their code page.
void Say(const std::wstring& line) {
    const std::string bytes = ObLib::ToUtf8(line + L"\n");
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()),
              &written, nullptr);
}

} // namespace pickerdriver

#include "tests/fakes/archive/Contexts.h"

#include <windows.h>

#include <map>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace fakes {
namespace {

std::uint64_t lastContext = 0;

std::map<std::uint64_t, std::wstring>& ZipNames() {
    static std::map<std::uint64_t, std::wstring> names;
    return names;
}

} // namespace

std::uint64_t NewContext() { return ++lastContext; }

void EndContext(std::uint64_t context) { ZipNames().erase(context); }

void NameZip(std::uint64_t context, const wchar_t* path) { ZipNames()[context] = path; }

void WriteMarker(std::uint64_t context, std::uint64_t size) {
    static constexpr char marker[] = "zip of the fake";
    const auto found = ZipNames().find(context);
    if (found == ZipNames().end()) return;
    const ObLib::UniqueKernelHandle file(CreateFileW(found->second.c_str(), GENERIC_WRITE, 0,
                                                     nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                                     nullptr));
    if (!file) return;
    DWORD written = 0;
    WriteFile(file.Get(), marker, sizeof(marker) - 1, &written, nullptr);
    if (size == 0) return;
    // Only the length is set, so that a zip of gigabytes costs no disk.
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size);
    SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN);
    SetEndOfFile(file.Get());
}

} // namespace fakes

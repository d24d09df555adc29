// Zips a folder once with the archive service beside the program, and prints what the call of Zip
// took: seconds, seconds of processor time, and the most megabytes that the process had in memory,
// after the call and before. zip_bench FOLDER ZIP METHOD, where METHOD is 0 or an encryption method
// of the contract.
#include <windows.h>

#include <psapi.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/contract/archive/LoadedService.h"

namespace {

void AddFolder(const obtest::LoadedService& service, obcontract::ZipContext context,
               const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const ObLib::UniqueFindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!search) return;
    do {
        const std::wstring path = folder + L"\\" + found.cFileName;
        const bool isFolder = found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
        if (!isFolder) service->AddFileW(context, path.c_str());
    } while (FindNextFileW(search.Get(), &found));
}

double Seconds() {
    LARGE_INTEGER now;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double SecondsOf(const FILETIME& time) {
    const ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    return static_cast<double>(ticks.QuadPart) / 1e7;
}

// Of all threads of this process, in user and kernel mode.
double ProcessorSeconds() {
    FILETIME made;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    GetProcessTimes(GetCurrentProcess(), &made, &ended, &kernel, &user);
    return SecondsOf(kernel) + SecondsOf(user);
}

double PeakMegabytes() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return static_cast<double>(memory.PeakWorkingSetSize) / (1024 * 1024);
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const obtest::LoadedService service;
    if (count != 4 || !service.IsComplete()) return 2;
    const auto method = static_cast<std::uint32_t>(_wtoi(arguments[3]));
    const obcontract::ZipContext context = service->CreateZipContext();
    AddFolder(service, context, arguments[1]);
    service->SetZipNameW(context, arguments[2]);
    service->SetCompression(context, obcontract::kCompressionDeflate);
    service->SetEncrypt(context, method);
    if (method != 0) service->SetPassword(context, "a password of the bench");
    const double memory = PeakMegabytes();
    const double processor = ProcessorSeconds();
    const double before = Seconds();
    const std::uint32_t result = service->Zip(nullptr, context);
    std::printf("seconds\t%.6f\n", Seconds() - before);
    std::printf("processor\t%.6f\n", ProcessorSeconds() - processor);
    std::printf("megabytes\t%.2f %.2f\n", PeakMegabytes(), memory);
    service->DestroyZipContext(context);
    return static_cast<int>(result);
}

// Uploads one file to a WebDAV server as a host does: on a thread of its own, under the progress
// window.
//
//   cloud_bench URL FILE NAME
//
// User and password come from OB_SERVER_USER and OB_SERVER_PASSWORD. Prints the seconds of the
// upload, and by how many megabytes the most memory that the process ever had exceeds what it had
// before.
#include <windows.h>

#include <psapi.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/UploadRun.h"
#include "services/providers/webdav/DavUpload.h"

namespace {

using namespace providers;

// The part of a provider that an upload uses.
class OneAccount final : public StorageProvider {
public:
    explicit OneAccount(DavAccess access) : access_(std::move(access)) {}

    UploadResult Upload(const std::wstring&, const UploadFile& file,
                        UploadProgress& progress) override {
        return upload_.Run(access_, file, progress, {});
    }

    std::uint32_t Id() const noexcept override { return 0; }
    std::wstring DisplayName() const override { return {}; }
    std::wstring ShortDescription() const override { return {}; }
    UINT IconId() const noexcept override { return 0; }
    bool Has(obcontract::ProviderCapability) const noexcept override { return false; }
    std::optional<StorageAccount> LogIn(const std::wstring&, HWND) override { return {}; }
    bool IsLoggedIn(const std::wstring&) const override { return true; }
    void LogOut(const std::wstring&, HWND) override {}
    void Manage(const std::wstring&, HWND) override {}
    std::optional<AccountSpace> Space(const std::wstring&, HANDLE) const override { return {}; }
    std::optional<std::uint64_t> MaxFileSize(const std::wstring&) const override { return {}; }
    std::wstring RootFolder(const std::wstring&) const override { return {}; }
    ShareResult Share(const std::wstring&, const StoredFile&, HANDLE) override { return {}; }
    bool SetExpiry(const std::wstring&, const std::wstring&, std::int32_t, HANDLE) override {
        return false;
    }
    DeletionEnd Delete(const std::wstring&, const StoredFile&, HANDLE) override {
        return DeletionEnd::Unreachable;
    }
    PickResult Pick(const std::wstring&, HWND) override { return {}; }

private:
    DavAccess access_;
    HttpSession session_;
    DavUpload upload_{session_};
};

std::wstring Variable(const wchar_t* name) {
    const wchar_t* const value = _wgetenv(name);
    if (!value) throw std::runtime_error("a variable is missing");
    return value;
}

PROCESS_MEMORY_COUNTERS Memory() {
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return memory;
}

int Measure(const wchar_t* address, const wchar_t* path, const wchar_t* name) {
    const auto root = ParseHttpUrl(ToUtf8(address));
    if (!root) return bench::Fail("the address");
    OneAccount account({*root,
                        {root->origin, Variable(L"OB_SERVER_USER"),
                         ObLib::Secret(ToUtf8(Variable(L"OB_SERVER_PASSWORD")).c_str())}});
    const ObLib::UniqueKernelHandle ended(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto before = Memory().WorkingSetSize;
    const bench::Stopwatch watch;
    const UploadResult result = RunUploadInWindow(account, L"", {path, name, L""},
                                                  {L"Upload", L"An upload."}, nullptr, ended.Get());
    const double seconds = watch.Milliseconds() / 1000;
    const auto most = Memory().PeakWorkingSetSize;
    if (result.end != UploadEnd::Done) return bench::Fail(ToUtf8(result.sentence).c_str());
    bench::PrintSeries("seconds", {seconds});
    bench::PrintSeries("megabytes", {static_cast<double>(most - before) / 1e6});
    return 0;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count != 4) return bench::Fail("three arguments");
    try {
        return Measure(words[1], words[2], words[3]);
    } catch (const std::exception& error) {
        return bench::Fail(error.what());
    }
}

// The library costs a page that is not mail next to nothing: after the first request of a process,
// no request opens, reads or looks for a file or a registry value, or loads a module.
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/entry/LoadedLibrary.h"
#include "tests/contract/quiet/CallCounter.h"
#include "tests/support/FakeBrowserContext.h"

namespace obtest {
namespace {

constexpr int kRequests = 1000;

bool Names(const std::string& name, std::initializer_list<const char*> parts) {
    for (const char* part : parts)
        if (name.find(part) != std::string::npos) return true;
    return false;
}

// The functions of the system's lowest library for files, sections, the registry and the loader.
// Every module's calls for these go through one of them.
bool IsAccess(const std::string& library, const std::string& name) {
    if (_stricmp(library.c_str(), "ntdll.dll") != 0) return false;
    const bool system = name.starts_with("Nt") || name.starts_with("Zw");
    if (system) return Names(name, {"File", "Key", "Directory", "Section", "Ioctl", "IoControl"});
    return name.starts_with("Ldr") && Names(name, {"Load", "GetDllHandle", "GetDllPath"});
}

// Functions of the C runtime are left out, as it exports variables as well. Its accesses go through
// the functions above.
bool IsSystemCall(const std::string& library, const std::string&) {
    return _stricmp(library.c_str(), "msvcrt.dll") != 0;
}

// The library with a page that isn't mail, after its first request.
class QuietPage : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(library_.module);
        page_.pageUrl = L"https://www.example.com/documents/upload?folder=42#settings";
        request_.lStructSize = sizeof(request_);
    }

    void CallEveryExport() {
        IFileDialog* const dialog = reinterpret_cast<IFileDialog*>(&page_); // a key, never called
        IShellItem* item = nullptr;
        IShellItemArray* items = nullptr;
        EXPECT_EQ(page_.openFileNameAnswer, library_.getOpenFileName(&request_, &page_));
        EXPECT_EQ(page_.showAnswer, library_.show(dialog, nullptr, &page_));
        EXPECT_EQ(page_.getResultAnswer, library_.getResult(dialog, &item, &page_));
        EXPECT_EQ(page_.getResultsAnswer, library_.getResults(dialog, &items, &page_));
    }

    void CallManyTimes() {
        page_.Clear();
        for (int count = 0; count < kRequests; ++count) CallEveryExport();
        EXPECT_EQ(4U * kRequests, page_.OwnDialogCount());
    }

    LoadedLibrary library_;
    FakeBrowserContext page_;
    OPENFILENAMEW request_{};
};

using Counts = std::map<std::string, std::uint64_t>;

TEST_F(QuietPage, AccessesNoFileAndNoRegistryValueAfterTheFirstRequest) {
    CallCounter counter;
    counter.WatchProcess(&IsAccess);
    ASSERT_GT(counter.Watched(), 50U);
    CallEveryExport();
    counter.Clear();
    CallManyTimes();
    EXPECT_EQ(Counts(), counter.Calls());
}

TEST_F(QuietPage, CallsTheSystemForItsActivationContextOnly) {
    CallEveryExport();
    CallCounter counter;
    counter.Watch(library_.module.Get(), &IsSystemCall);
    ASSERT_GT(counter.Watched(), 50U);
    CallManyTimes();
    // Two of the four exports are requests; the two queries look into a map.
    const Counts expected = {{"ActivateActCtx", 2U * kRequests},
                             {"DeactivateActCtx", 2U * kRequests}};
    EXPECT_EQ(expected, counter.Calls());
}

TEST_F(QuietPage, LoadsNeitherSisterModule) {
    CallManyTimes();
    EXPECT_FALSE(GetModuleHandleW(L"obofcsvc64.dll"));
    EXPECT_FALSE(GetModuleHandleW(L"PVXManager64.dll"));
}

// The two tests below show that the counters count what the tests above find absent.
TEST_F(QuietPage, IsWatchedByCountersThatCountTheFirstRequestAndAMailPage) {
    CallCounter counter;
    counter.WatchProcess(&IsAccess);
    CallCounter own;
    own.Watch(library_.module.Get(), &IsSystemCall);
    CallEveryExport();
    EXPECT_EQ(1U, own.Calls()["LoadLibraryExW"]) << "the library's texts are bound once";
    EXPECT_NE(Counts(), counter.Calls());

    counter.Clear();
    own.Clear();
    page_.pageUrl = L"https://mail.google.com/mail/u/0/#inbox";
    page_.pickerWanted = 0;
    library_.getOpenFileName(&request_, &page_);
    EXPECT_EQ(1U, own.Calls()["LoadLibraryW"]) << "the archive service is bound on a mail page";
    EXPECT_NE(Counts(), counter.Calls());
}

TEST_F(QuietPage, IsWatchedByCountersThatCountFileAndRegistryCalls) {
    CallCounter counter;
    counter.WatchProcess(&IsAccess);
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(L"C:\\app"));
    EXPECT_NE(Counts(), counter.Calls());

    counter.Clear();
    ObLib::UniqueRegistryKey key;
    EXPECT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software", 0, KEY_READ, key.Put()));
    EXPECT_NE(Counts(), counter.Calls());
}

} // namespace
} // namespace obtest

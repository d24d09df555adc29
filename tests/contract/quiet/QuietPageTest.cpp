// A page that is not mail pays nothing for the library: after the first request of a process, no
// request there opens, reads or looks for a file or a registry value, or loads a module.
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/entry/LoadedLibrary.h"
#include "tests/contract/entry/PageContext.h"
#include "tests/contract/quiet/CallCounter.h"

namespace obtest {
namespace {

constexpr int kRequests = 1000;

bool Names(const std::string& name, std::initializer_list<const char*> parts) {
    for (const char* part : parts)
        if (name.find(part) != std::string::npos) return true;
    return false;
}

// The doors of the system's lowest library to files, sections, the registry and the loader. What
// any module of the process asks of the system goes through one of them.
bool IsAccess(const std::string& library, const std::string& name) {
    if (_stricmp(library.c_str(), "ntdll.dll") != 0) return false;
    const bool system = name.starts_with("Nt") || name.starts_with("Zw");
    if (system) return Names(name, {"File", "Key", "Directory", "Section", "Ioctl", "IoControl"});
    return name.starts_with("Ldr") && Names(name, {"Load", "GetDllHandle", "GetDllPath"});
}

// Functions of the C runtime are left out: it exports variables beside them. Their files and
// modules come from the doors above.
bool IsSystemCall(const std::string& library, const std::string&) {
    return _stricmp(library.c_str(), "msvcrt.dll") != 0;
}

// The library with a page that isn't mail, after its first request.
class QuietPage : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(library_.module);
        page_.url = L"https://www.example.com/documents/upload?folder=42#settings";
        request_.lStructSize = sizeof(request_);
    }

    void AskEveryDoor() {
        IFileDialog* const dialog = reinterpret_cast<IFileDialog*>(&page_); // a key, never called
        IShellItem* item = nullptr;
        IShellItemArray* items = nullptr;
        EXPECT_EQ(9, library_.getOpenFileName(&request_, &page_));
        EXPECT_EQ(0x00041001, library_.show(dialog, nullptr, &page_));
        EXPECT_EQ(0x00041002, library_.getResult(dialog, &item, &page_));
        EXPECT_EQ(0x00041003, library_.getResults(dialog, &items, &page_));
    }

    void AskManyTimes() {
        page_.asked.clear();
        for (int count = 0; count < kRequests; ++count) AskEveryDoor();
        EXPECT_EQ(4U * kRequests, page_.asked.size());
    }

    LoadedLibrary library_;
    PageContext page_;
    OPENFILENAMEW request_{};
};

using Counts = std::map<std::string, std::uint64_t>;

TEST_F(QuietPage, TouchesNoFileAndNoRegistryValueAfterTheFirstRequest) {
    CallCounter counter;
    counter.WatchProcess(&IsAccess);
    ASSERT_GT(counter.Watched(), 50U);
    AskEveryDoor();
    counter.Clear();
    AskManyTimes();
    EXPECT_EQ(Counts(), counter.Calls());
}

TEST_F(QuietPage, AsksTheSystemForItsActivationContextOnly) {
    AskEveryDoor();
    CallCounter counter;
    counter.Watch(library_.module.Get(), &IsSystemCall);
    ASSERT_GT(counter.Watched(), 50U);
    AskManyTimes();
    // Two of the four doors are requests; the two queries look into a map.
    const Counts expected = {{"ActivateActCtx", 2U * kRequests},
                             {"DeactivateActCtx", 2U * kRequests}};
    EXPECT_EQ(expected, counter.Calls());
}

TEST_F(QuietPage, LoadsNeitherSisterModule) {
    AskManyTimes();
    EXPECT_FALSE(GetModuleHandleW(L"obofcsvc64.dll"));
    EXPECT_FALSE(GetModuleHandleW(L"PVXManager64.dll"));
}

// The two below show that the counters would see what the tests above find absent.
TEST_F(QuietPage, IsWatchedByCountersThatSeeTheFirstRequestAndAMailPage) {
    CallCounter counter;
    counter.WatchProcess(&IsAccess);
    CallCounter own;
    own.Watch(library_.module.Get(), &IsSystemCall);
    AskEveryDoor();
    EXPECT_EQ(1U, own.Calls()["LoadLibraryExW"]) << "the library's texts are bound once";
    EXPECT_NE(Counts(), counter.Calls());

    counter.Clear();
    own.Clear();
    page_.url = L"https://mail.google.com/mail/u/0/#inbox";
    page_.wanted = 0;
    library_.getOpenFileName(&request_, &page_);
    EXPECT_EQ(1U, own.Calls()["LoadLibraryW"]) << "the archive service is bound on a mail page";
    EXPECT_NE(Counts(), counter.Calls());
}

TEST_F(QuietPage, IsWatchedByCountersThatSeeFileAndRegistryCalls) {
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

#include "OBCore/modules/ThreadLanguage.h"

#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

namespace {

using obcore::GetThreadLanguage;
using obcore::SetThreadLanguage;

// The thread's list as the fake calls keep it; Wine's own calls do nothing.
std::wstring threadList;
bool fails;
DWORD flagsOfGet;
ULONG capacityOfGet;
std::vector<DWORD> flagsOfSet;
std::vector<std::wstring> setLists;

BOOL WINAPI AnswerLanguages(DWORD flags, PULONG count, PZZWSTR list, PULONG capacity) {
    flagsOfGet = flags;
    capacityOfGet = *capacity;
    if (fails) return FALSE;
    *count = threadList.empty() ? 0 : 1;
    std::copy(threadList.begin(), threadList.end(), list);
    *capacity = static_cast<ULONG>(threadList.size());
    return TRUE;
}

BOOL WINAPI RecordLanguages(DWORD flags, PCZZWSTR list, PULONG count) {
    flagsOfSet.push_back(flags);
    const std::wstring first = list;
    // A list ends with an empty item, and so does an empty one.
    EXPECT_EQ(L'\0', list[first.size() + 1]);
    setLists.push_back(first);
    EXPECT_EQ(nullptr, count);
    if (fails) {
        SetLastError(87);
        return FALSE;
    }
    threadList = first.empty() ? L"" : first + std::wstring(2, L'\0');
    return TRUE;
}

class ThreadLanguage : public BindingFixture {
protected:
    void SetUp() override {
        BindingFixture::SetUp();
        ASSERT_TRUE(get_.Ok() && set_.Ok());
        threadList.clear();
        fails = false;
        flagsOfSet.clear();
        setLists.clear();
    }

private:
    obtest::ImportPatch<decltype(GetThreadPreferredUILanguages)> get_{
        "kernel32.dll", "GetThreadPreferredUILanguages", &AnswerLanguages};
    obtest::ImportPatch<decltype(SetThreadPreferredUILanguages)> set_{
        "kernel32.dll", "SetThreadPreferredUILanguages", &RecordLanguages};
};

TEST_F(ThreadLanguage, IsTheFirstPreferredOneAsANumber) {
    threadList = std::wstring(L"040c\0", 5) + std::wstring(L"0409\0", 5).substr(0, 4);
    threadList.resize(10);
    EXPECT_EQ(0x040C, GetThreadLanguage());
    EXPECT_EQ(68u, flagsOfGet);
    EXPECT_EQ(10u, capacityOfGet);
}

TEST_F(ThreadLanguage, IsNoneWhenTheListIsEmptyOrTheCallFails) {
    EXPECT_EQ(0, GetThreadLanguage());
    threadList = std::wstring(L"040c\0\0", 6);
    fails = true;
    EXPECT_EQ(0, GetThreadLanguage());
}

TEST_F(ThreadLanguage, IsSetAsAListOfOne) {
    SetThreadLanguage(1031);
    SetThreadLanguage(0x0C04);
    EXPECT_EQ(std::vector<std::wstring>({L"0407", L"0c04"}), setLists);
    EXPECT_EQ(std::vector<DWORD>({4, 4}), flagsOfSet);
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST_F(ThreadLanguage, IsClearedByZero) {
    SetThreadLanguage(0);
    EXPECT_EQ(std::vector<std::wstring>({L""}), setLists);
}

TEST_F(ThreadLanguage, IsTracedWhenItCantBeSet) {
    fails = true;
    SetThreadLanguage(1031);
    EXPECT_EQ(std::vector<std::string>(
                  {"SetThreadMUILanguage - 1031", "SetThreadMUILanguage LastError - 87"}),
              obtest::TraceLines());
}

TEST_F(ThreadLanguage, ComesBackAtTheEndOfAScope) {
    SetThreadLanguage(0x0409);
    {
        const obcore::ThreadLanguageScope scope(0x0407);
        EXPECT_EQ(0x0407, GetThreadLanguage());
    }
    EXPECT_EQ(0x0409, GetThreadLanguage());
}

TEST_F(ThreadLanguage, ComesBackAsNoneWhereThereWasNone) {
    { const obcore::ThreadLanguageScope scope(0x0407); }
    EXPECT_EQ(std::vector<std::wstring>({L"0407", L""}), setLists);
}

} // namespace

// Strings under exhausted memory, without leaks, and on several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ObLib/Src/ObString.h"
#include "ObLib/Src/StringPool.h"
#include "tests/support/Allocations.h"

namespace {

using ObLib::ObString;
using obtest::AllocationCount;
using obtest::FailEachAllocation;
using obtest::LiveBlocks;
using obtest::WatchReleased;

constexpr wchar_t kLong[] = L"a text that is on the heap";

// Every block made since is released in the end.
class LeakCheck {
public:
    explicit LeakCheck(const char* what) : what_(what) {}
    LeakCheck(const LeakCheck&) = delete;
    LeakCheck& operator=(const LeakCheck&) = delete;
    ~LeakCheck() { EXPECT_EQ(live_, LiveBlocks()) << "blocks that nobody released: " << what_; }

private:
    const char* what_;
    std::size_t live_ = LiveBlocks();
};

// Pooling is off: each core is an allocation of its own.
class StringMemory : public testing::Test {
protected:
    void SetUp() override {
        ObLib::PoolSwitchOff();
        // The system may keep memory from the first conversion on.
        const ObString first("first", ObLib::kCodePageUtf8);
    }
    void TearDown() override { ObLib::PoolSwitchOn(); }
};

using Change = void (*)(ObString&);

struct NamedChange {
    const char* name;
    Change change;
};

const NamedChange kChanges[] = {
    {"AssignText", [](ObString& s) { s.AssignText(L"another text that is on the heap"); }},
    {"Append", [](ObString& s) { s.Append(L", and more of it"); }},
    {"AppendString", [](ObString& s) { s.AppendString(s); }},
    {"DropLast", [](ObString& s) { s.DropLast(); }},
    {"TrimLeft", [](ObString& s) { s.TrimLeft(); }},
    {"TrimRight", [](ObString& s) { s.TrimRight(); }},
    {"ToLower", [](ObString& s) { s.ToLower(); }},
    {"Format", [](ObString& s) { s.Format(L"%ls %d", s.CStr(), 12); }},
    {"Assign",
     [](ObString& s) {
         const ObString other(L"another text that is on the heap");
         s.Assign(other);
     }},
    {"FromBytes",
     [](ObString& s) { s = ObString("bytes that go to the heap", ObLib::kCodePageUtf8); }},
    {"Copy",
     [](ObString& s) {
         const ObString copy(s);
         s = copy;
     }},
};

TEST_F(StringMemory, AChangeThatFailsLeavesTheStringAndItsSharersAsTheyWere) {
    for (const NamedChange& row : kChanges) {
        for (const wchar_t* const text : {kLong, L"  a text with blanks on the heap  "}) {
            const LeakCheck check(row.name);
            const ObString kept(text);
            ObString string(kept);
            const std::size_t failures =
                FailEachAllocation([&] { row.change(string); },
                                   [&] {
                                       EXPECT_STREQ(text, string.CStr());
                                       EXPECT_STREQ(text, kept.CStr());
                                       EXPECT_EQ(2, kept.Core()->ShareCount());
                                   });
            EXPECT_STREQ(text, kept.CStr());
            const bool changes = std::wstring(text) != string.CStr();
            EXPECT_TRUE(!changes || failures >= 1);
        }
    }
}

TEST_F(StringMemory, AStringThatCannotBeMadeLeavesNothing) {
    const LeakCheck check("constructors");
    EXPECT_EQ(2u, FailEachAllocation([] { ObString string(kLong); }, [] {}));
    EXPECT_EQ(1u, FailEachAllocation([] { ObString string(L"short"); }, [] {}));
    const ObString kept(kLong);
    EXPECT_EQ(1u, FailEachAllocation([&] { ObString copy(kept); },
                                     [&] { EXPECT_EQ(1, kept.Core()->ShareCount()); }));
}

TEST_F(StringMemory, ACopyOfAFullBlockThatCannotBeMadeLeavesNothing) {
    const LeakCheck check("copies of a full block");
    const ObString kept(kLong);
    std::vector<ObString> copies(32766, kept);
    EXPECT_EQ(32767, kept.Core()->ShareCount());
    EXPECT_EQ(2u, FailEachAllocation([&] { ObString copy(kept); },
                                     [&] { EXPECT_EQ(32767, kept.Core()->ShareCount()); }));
}

TEST_F(StringMemory, SmallStringsAllocateNoTextAndCopiesOfLongOnesNeither) {
    const ObString kept(kLong);
    const std::size_t before = AllocationCount();
    { const ObString small(L"123456789012"); }
    EXPECT_EQ(before + 1, AllocationCount()) << "the core";
    { const ObString copy(kept); }
    EXPECT_EQ(before + 2, AllocationCount());
    ObLib::PoolSwitchOn();
    { const ObString first(L"123456789012"); }
    const std::size_t pooled = AllocationCount();
    { const ObString again(L"123456789012"); }
    { const ObString copy(kept); }
    EXPECT_EQ(pooled, AllocationCount()) << "the core comes from the list";
    ObLib::PoolSwitchOff();
}

constexpr wchar_t kSecret[] = L"\x2603\x2603\x2603\x2603 is a secret that is on the heap";

TEST_F(StringMemory, ASecureTextOnTheHeapIsWipedByWhoLetsItGoLast) {
    auto secret = std::make_unique<ObString>(kSecret);
    secret->MakeSecure();
    auto copy = std::make_unique<ObString>(*secret);
    const WatchReleased watch(L'\x2603');
    secret.reset();
    EXPECT_STREQ(kSecret, copy->CStr()) << "the others still read it";
    copy.reset();
    EXPECT_EQ(5u, watch.Released()) << "two handles, two cores, one block";
    EXPECT_EQ(0u, watch.Holding());
    { const ObString open(kSecret); }
    EXPECT_EQ(1u, watch.Holding()) << "the test sees what isn't wiped";
}

TEST_F(StringMemory, NoChangeOfASecureStringLeavesItsTextInReleasedMemory) {
    for (const NamedChange& row : kChanges) {
        for (const wchar_t* const text : {L"\x2603\x2603\x2603\x2603", kSecret}) {
            const WatchReleased watch(L'\x2603');
            {
                ObString string(text);
                string.MakeSecure();
                row.change(string);
            }
            EXPECT_NE(0u, watch.Released()) << row.name;
            EXPECT_EQ(0u, watch.Holding()) << row.name;
        }
    }
}

TEST(StringThreads, CopiesOfOneTextAreMadeChangedAndReleasedOnSeveralThreads) {
    const ObString shared(kLong);
    std::atomic<int> wrong = 0;
    const auto work = [&wrong](ObString own) {
        for (int round = 0; round < 20000; ++round) {
            ObString copy(own);
            ObString other(copy);
            if (round % 3 == 0) copy.Append(L"!");
            if (round % 5 == 0) other.ToLower();
            if (copy.Length() < 26 || other.Length() != 26) ++wrong;
            own = other;
        }
        if (!own.Equals(kLong)) ++wrong;
    };
    std::vector<std::thread> threads;
    for (int count = 0; count < 3; ++count) threads.emplace_back(work, shared);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
    EXPECT_STREQ(kLong, shared.CStr());
    EXPECT_EQ(1, shared.Core()->ShareCount());
}

TEST(StringThreads, TheLimitOfSharersIsKeptWhenSeveralThreadsReachIt) {
    const ObString shared(kLong);
    std::vector<std::vector<ObString>> copies(3);
    const auto work = [](ObString own, std::vector<ObString>& out) {
        for (int count = 0; count < 15000; ++count) out.push_back(own);
    };
    std::vector<std::thread> threads;
    for (auto& out : copies) threads.emplace_back(work, shared, std::ref(out));
    for (std::thread& thread : threads) thread.join();
    EXPECT_LE(shared.Core()->ShareCount(), 32767);
    EXPECT_GE(shared.Core()->ShareCount(), 32764) << "those of the threads' own copies were let go";
    copies.clear();
    EXPECT_EQ(1, shared.Core()->ShareCount());
}

// Strings of static objects live longer than the pool: this one is made before the pool's list.
struct Late {
    ~Late() {
        if (string.IsNull()) return;
        const std::size_t live = LiveBlocks();
        string = ObString();
        // Core and text go to the heap: the list is gone, and nobody would find them in it.
        if (LiveBlocks() != live - 2) std::_Exit(1);
    }
    ObString string;
};
Late g_late;

TEST(StringThreads, AStaticStringMayBeReleasedAfterThePool) {
    g_late.string.AssignText(kLong);
    EXPECT_STREQ(kLong, g_late.string.CStr());
}

} // namespace

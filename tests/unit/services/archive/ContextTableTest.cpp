#include "services/archive/ContextTable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/Allocations.h"

namespace {

using obarchive::ContextTable;
using obarchive::ZipJob;

TEST(ContextTableTest, GivesDifferentNumbersThatAreNeverZero) {
    ContextTable table;
    std::set<obcontract::ZipContext> seen;
    for (int count = 0; count < 100; ++count) {
        const obcontract::ZipContext context = table.Create();
        EXPECT_NE(context, 0U);
        EXPECT_TRUE(seen.insert(context).second);
        if (count % 2) table.Destroy(context);
    }
}

TEST(ContextTableTest, KeepsTheJobsOfTwoContextsApart) {
    ContextTable table;
    const auto first = table.Create();
    const auto second = table.Create();
    table.Change(first, [](ZipJob& job) { job.target = L"one"; });
    table.Change(second, [](ZipJob& job) { job.target = L"two"; });
    EXPECT_EQ(table.Copy(first)->target, L"one");
    EXPECT_EQ(table.Copy(second)->target, L"two");
}

TEST(ContextTableTest, RefusesAnInventedAndADestroyedContext) {
    ContextTable table;
    const auto context = table.Create();
    table.Destroy(context);
    bool called = false;
    for (const obcontract::ZipContext bad :
         {context, obcontract::ZipContext{0}, ~obcontract::ZipContext{0}}) {
        table.Change(bad, [&](ZipJob&) { called = true; });
        EXPECT_FALSE(table.Copy(bad).has_value());
        table.Destroy(bad);
    }
    EXPECT_FALSE(called);
}

TEST(ContextTableTest, CopiesAreNotTouchedByLaterChanges) {
    ContextTable table;
    const auto context = table.Create();
    table.Change(context, [](ZipJob& job) { job.password = obarchive::Secret("first"); });
    const auto copy = table.Copy(context);
    table.Change(context, [](ZipJob& job) { job.password = obarchive::Secret("second"); });
    EXPECT_STREQ(copy->password.Text(), "first");
    EXPECT_STREQ(table.Copy(context)->password.Text(), "second");
}

// What an export does: a context without its setting would zip in another way than was asked for.
TEST(ContextTableTest, DestroysAContextWhoseSettingCannotBeStored) {
    const std::wstring path(1000, L'p');
    ContextTable table;
    obcontract::ZipContext context = 0;
    std::size_t failures = 0;
    for (bool stored = false; !stored; failures += !stored) {
        context = table.Create();
        {
            const obtest::FailingAllocations failing({.succeeding = failures, .once = true});
            table.ChangeOrDestroy(context, [&](ZipJob& job) { job.files.push_back(path); });
        }
        const auto copy = table.Copy(context);
        stored = copy && copy->files == std::vector{path};
        ASSERT_TRUE(stored || !copy) << failures;
    }
    EXPECT_GT(failures, 0U);
}

} // namespace

#include "services/archive/ContextTable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

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

TEST(SecretTest, StoresATextOrNothing) {
    EXPECT_TRUE(obarchive::Secret().Empty());
    EXPECT_TRUE(obarchive::Secret(nullptr).Empty());
    EXPECT_TRUE(obarchive::Secret("").Empty());
    EXPECT_STREQ(obarchive::Secret("").Text(), "");
    obarchive::Secret secret("p\xC3\xA4ss");
    EXPECT_STREQ(secret.Text(), "p\xC3\xA4ss");
    const obarchive::Secret moved = std::move(secret);
    EXPECT_STREQ(moved.Text(), "p\xC3\xA4ss");
}

// The memory of a local buffer stays mapped after its scope, so a test can read what is left in it.
TEST(SecretTest, AStackBufferIsWipedAtTheEndOfItsScope) {
    alignas(8) static unsigned char place[sizeof(obarchive::WipedBuffer<char, 32>)];
    auto* buffer = new (place) obarchive::WipedBuffer<char, 32>;
    std::memcpy(buffer->data, "very secret", 12);
    buffer->~WipedBuffer();
    for (const unsigned char byte : place) EXPECT_EQ(byte, 0);
}

} // namespace

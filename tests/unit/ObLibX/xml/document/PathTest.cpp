#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/XmlPath.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"

using namespace ObLibX;

TEST(XmlPath, IsAnyElementWhenItIsEmptyOrNull) {
    for (const wchar_t* text : {static_cast<const wchar_t*>(nullptr), L""}) {
        const XmlPath path(text);
        EXPECT_FALSE(path.IsBad());
        EXPECT_EQ(path.Type(), PathType::Any);
        EXPECT_EQ(path.StepCount(), 0u);
    }
}

TEST(XmlPath, ReportsWhereTheSearchBegins) {
    EXPECT_EQ(XmlPath(L"a/b").Type(), PathType::Relative);
    EXPECT_EQ(XmlPath(L"/a/b").Type(), PathType::Absolute);
    EXPECT_EQ(XmlPath(L"//a").Type(), PathType::Below);
    EXPECT_EQ(static_cast<int>(PathType::Below), 3);
}

TEST(XmlPath, ReadsEachStepInPlace) {
    const wchar_t* const text = L"a/*/c:d-e";
    const XmlPath path(text);
    ASSERT_EQ(path.StepCount(), 3u);
    EXPECT_EQ(path[0].name, L"a");
    EXPECT_TRUE(PathStep::IsAnyName(path[1].name));
    EXPECT_EQ(path[2].name, L"c:d-e");
    EXPECT_EQ(path[2].name.data(), text + 4);
    EXPECT_FALSE(PathStep::IsAnyName(L"**"));
}

TEST(XmlPath, ReadsMoreStepsThanItStoresInline) {
    const XmlPath path(L"a/b/c/d/e/f/g");
    ASSERT_EQ(path.StepCount(), 7u);
    EXPECT_EQ(path[3].name, L"d");
    EXPECT_EQ(path[4].name, L"e");
    EXPECT_EQ(path[6].name, L"g");
}

TEST(XmlPath, ReadsANumberFromOneToNine) {
    const XmlPath path(L"a[1]/b[90]/c[4294967295]/d[99999999999999]");
    ASSERT_EQ(path.StepCount(), 4u);
    EXPECT_EQ(path[0].test, StepTest::Count);
    EXPECT_EQ(path[0].count, 1u);
    EXPECT_EQ(path[1].count, 90u);
    EXPECT_EQ(path[2].count, 4294967295u);
    EXPECT_EQ(path[3].count, 4294967295u);
}

TEST(XmlPath, TakesANumberThatBeginsWithZeroForAChild) {
    const XmlPath path(L"a[0]/b[01]");
    ASSERT_EQ(path.StepCount(), 2u);
    EXPECT_EQ(path[0].test, StepTest::Child);
    EXPECT_EQ(path[0].testName, L"0");
    EXPECT_EQ(path[1].testName, L"01");
    EXPECT_TRUE(path.HasChildTest());
}

TEST(XmlPath, ReadsTestsOfAttributesAndChildren) {
    const XmlPath path(L"a[@b]/c[@d=e f]/g[@h=\"i]'j\"]/k[@l='m\"n']/o[p]/q[@r=]/s[@t='']");
    ASSERT_EQ(path.StepCount(), 7u);
    EXPECT_EQ(path[0].test, StepTest::Attribute);
    EXPECT_EQ(path[0].testName, L"b");
    EXPECT_EQ(path[1].test, StepTest::Value);
    EXPECT_EQ(path[1].testName, L"d");
    EXPECT_EQ(path[1].value, L"e f");
    EXPECT_EQ(path[2].value, L"i]'j");
    EXPECT_EQ(path[3].value, L"m\"n");
    EXPECT_EQ(path[4].test, StepTest::Child);
    EXPECT_EQ(path[4].testName, L"p");
    EXPECT_EQ(path[5].test, StepTest::Value);
    EXPECT_EQ(path[5].value, L"");
    EXPECT_EQ(path[6].value, L"");
    EXPECT_FALSE(XmlPath(L"a[@b]/c[2]").HasChildTest());
}

TEST(XmlPath, AddressesAnAttributeInItsLastStep) {
    const XmlPath path(L"/a/b[2]/@c");
    EXPECT_FALSE(path.IsBad());
    EXPECT_EQ(path.StepCount(), 2u);
    EXPECT_EQ(path.Attribute(), L"c");
    EXPECT_TRUE(XmlPath(L"a").Attribute().empty());
}

TEST(XmlPath, IsBadWithOneBadStep) {
    for (const wchar_t* text :
         {L"/",        L"//",       L"///a",       L"a/",     L"a//b",   L"/a//b",   L"//a/b",
          L"//a/@b",   L"@a",       L"/@a",        L"//@a",   L"a/@b/c", L"a/@b/",   L"a/@",
          L"a/@b[1]",  L"a/@b=c",   L"a[",         L"a[]",    L"a[1",    L"a[1x]",   L"a[1 ]",
          L"a[b",      L"a[b c]",   L"a[b=c]",     L"a[b/c]", L"a[@]",   L"a[@b",    L"a[@b=c",
          L"a[@b='c]", L"a[@b='c'", L"a[@b='c'x]", L"a[@=c]", L"a[1]b",  L"a[1][2]", L"a]",
          L"a=b",      L"a b",      L" a",         L"a[ 1]",  L"[1]",    L"=",       L"]"}) {
        EXPECT_TRUE(XmlPath(text).IsBad()) << testing::PrintToString(std::wstring(text));
    }
}

TEST(XmlPath, EndsACallersNameWhereAStepWould) {
    EXPECT_EQ(CallerNameLength(L"name"), 4u);
    EXPECT_EQ(CallerNameLength(L"name rest"), 4u);
    EXPECT_EQ(CallerNameLength(L"a=b"), 1u);
    EXPECT_EQ(CallerNameLength(L"a[b"), 1u);
    EXPECT_EQ(CallerNameLength(L"a]b"), 1u);
    EXPECT_EQ(CallerNameLength(L"a/b"), 1u);
    EXPECT_EQ(CallerNameLength(L"a\tb"), 3u);
    EXPECT_EQ(CallerNameLength(L""), 0u);
}

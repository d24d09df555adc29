// A tag read attribute by attribute gives what asking for each by its number and name gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;
using obtest::CountAllocations;
using obtest::FailEachAllocation;

namespace {

// The present tag's attributes, each as [name|value].
std::wstring Walked(const XmlOffsetDocument& document) {
    AttributeCursor attributes(document.CurrentPosition());
    std::wstring all;
    while (document.GetNextAttribute(attributes)) {
        all += L'[' + attributes.Name() + L'|' + attributes.Value() + L']';
    }
    return all;
}

std::wstring WalkedIn(const wchar_t* text, std::uint32_t flags = 0) {
    XmlOffsetDocument document;
    document.SetFlags(flags);
    document.SetText(text);
    document.FindElement();
    return Walked(document);
}

bool SameNames(const std::wstring& one, const std::wstring& other, bool ignoreCase) {
    return one.size() == other.size() && SameName(one.data(), other.data(), one.size(), ignoreCase);
}

// Whether asking by this name gets this attribute: an earlier one doesn't have the name, and the
// name hasn't an end for the caller in it.
bool FoundByName(const std::wstring& name, const std::vector<std::wstring>& earlier,
                 bool ignoreCase) {
    return std::none_of(name.begin(), name.end(), EndsCallerName) &&
           std::none_of(earlier.begin(), earlier.end(), [&](const std::wstring& other) {
               return SameNames(other, name, ignoreCase);
           });
}

// Gives the attributes whose values were compared.
int ExpectAsByNumberAndName(const XmlOffsetDocument& document) {
    const std::int32_t position = document.CurrentPosition();
    AttributeCursor attributes(position);
    std::vector<std::wstring> names;
    int compared = 0;
    while (document.GetNextAttribute(attributes)) {
        const std::wstring& name = attributes.Name();
        EXPECT_EQ(name, document.GetAttributeNameAt(static_cast<std::int32_t>(names.size())));
        if (FoundByName(name, names, (document.Flags() & kDocIgnoreCase) != 0)) {
            EXPECT_EQ(attributes.Value(), document.GetAttribute(position, name.c_str()));
            ++compared;
        }
        names.push_back(name);
    }
    EXPECT_EQ(document.GetAttributeNameAt(static_cast<std::int32_t>(names.size())), L"");
    return compared;
}

// Pieces of a tag, in any order.
std::wstring RandomTag(std::uint32_t seed) {
    static const std::vector<std::wstring> pieces = {L" ",       L"\t",
                                                     L"\r\n",    L"=",
                                                     L"==",      L" = ",
                                                     L"/",       L"?",
                                                     L"\"",      L"'",
                                                     L"a",       L"Bb",
                                                     L"bB",      L"c[d",
                                                     L"name",    L" x ",
                                                     L" x=1",    L" x",
                                                     L" y='z'",  L" y=z",
                                                     L" z=\"\"", L"&lt;",
                                                     L"&#65;",   L"&no;",
                                                     L"&",       L"<",
                                                     L"!",       L" v='  &amp; w  '",
                                                     L" \xd83d", L"\xfffe",
                                                     L"=\"> \"", L"='/>'",
                                                     L"\x01",    L"longer_than_8"};
    std::mt19937 random(seed);
    std::wstring tag = L"<t ";
    for (std::uint32_t i = 0; i < 1 + seed % 16; ++i) tag += pieces[random() % pieces.size()];
    return tag + L">";
}

void WalkStream(XmlOffsetDocument& document, std::wstring& out) {
    while (document.FindElement()) {
        out += document.GetTagName() + L": " + Walked(document) + L'\n';
        ExpectAsByNumberAndName(document);
        if (document.IntoElement()) {
            WalkStream(document, out);
            document.OutOfElement();
        }
    }
}

} // namespace

TEST(AttributeCursors, ReturnNamesAndDecodedValuesInTheOrderOfTheTag) {
    EXPECT_EQ(WalkedIn(L"<a b=\"1\" c='&lt;2&#65;' d=3\r\n e = ' x '/>"),
              L"[b|1][c|<2A][d|3][e| x ]");
    EXPECT_EQ(WalkedIn(L"<a/>"), L"");
    EXPECT_EQ(WalkedIn(L"<a></a>"), L"");
    EXPECT_EQ(WalkedIn(L"<a b='1'><c d='2'/></a>"), L"[b|1]");
}

TEST(AttributeCursors, GiveAnAttributeWithoutAValueItsNameAndAnEmptyValueAsEmpty) {
    EXPECT_EQ(WalkedIn(L"<a b c=\"\" d=>"), L"[b|b][c|][d|]");
    EXPECT_EQ(WalkedIn(L"<a b&lt; c>"), L"[b&lt;|b<][c|c]");
}

TEST(AttributeCursors, GiveEachOfSeveralWithOneNameItsOwnValue) {
    EXPECT_EQ(WalkedIn(L"<a b='1' b='2' b B='3'/>"), L"[b|1][b|2][b|b][B|3]");
    EXPECT_EQ(WalkedIn(L"<a b='1' B='2'/>", kDocIgnoreCase), L"[b|1][B|2]");
}

TEST(AttributeCursors, TrimByTheFlagsOfTheDocument) {
    EXPECT_EQ(WalkedIn(L"<a b='  1  2 ' c='&#32;'/>", kDocTrim), L"[b|1  2][c| ]");
    EXPECT_EQ(WalkedIn(L"<a b='  1  2 '/>", kDocCollapse), L"[b|1 2]");
}

TEST(AttributeCursors, KeepTheSlashOfAnUnquotedValueAndPassOverStrayUnits) {
    EXPECT_EQ(WalkedIn(L"<a href=x/>"), L"[href|x/]");
    EXPECT_EQ(WalkedIn(L"<a href=x />"), L"[href|x]");
    EXPECT_EQ(WalkedIn(L"<a / b=1 ? =c d=\"2\" =\"e f\" g/>"), L"[b|1][d|2][g|g]");
    EXPECT_EQ(WalkedIn(L"<a b='1'c='2'/>"), L"[b|1][c|2]");
}

TEST(AttributeCursors, GiveWhatNumberAndNameGiveForAnyTag) {
    int compared = 0;
    for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
        XmlOffsetDocument document;
        constexpr std::uint32_t kFlags[] = {0, kDocIgnoreCase, kDocTrim, kDocCollapse};
        document.SetFlags(kFlags[seed % 4]);
        document.SetText(std::wstring_view(RandomTag(seed)));
        if (!document.FindElement()) continue;
        compared += ExpectAsByNumberAndName(document);
        if (testing::Test::HasFailure()) {
            FAIL() << "seed " << seed << ": " << Narrow(document.Text());
        }
    }
    EXPECT_GT(compared, 20000);
}

TEST(AttributeCursors, ReadTheCurrentProcessingInstruction) {
    XmlOffsetDocument document;
    document.SetText(L"<?xml version=\"1.0\" encoding='x' standalone=yes?><a version='2'/>");
    PutOnNode(document, kNodeInstruction, L"<?xml version=\"1.0\" encoding='x' standalone=yes?>");
    EXPECT_EQ(Walked(document), L"[version|1.0][encoding|x][standalone|yes]");
    EXPECT_EQ(ExpectAsByNumberAndName(document), 3);
    AttributeCursor beside(1);
    ASSERT_TRUE(document.GetNextAttribute(beside));
    EXPECT_EQ(beside.Value(), L"2");
}

TEST(AttributeCursors, FindNothingWhereThereIsNoTag) {
    XmlOffsetDocument document;
    AttributeCursor attributes;
    EXPECT_FALSE(document.GetNextAttribute(attributes));
    document.SetText(L"<!--a b='1'--><a b='1'/>");
    for (const std::int32_t position : {-1, 0, 2, 100000, 0x7FFFFFFF}) {
        attributes.Begin(position);
        EXPECT_FALSE(document.GetNextAttribute(attributes)) << position;
        EXPECT_TRUE(attributes.Name().empty() && attributes.Value().empty());
    }
    PutOnNode(document, kNodeComment, L"<!--a b='1'-->");
    EXPECT_EQ(Walked(document), L"");
}

TEST(AttributeCursors, StayPastTheLastAttributeUntilTheyBeginAnew) {
    XmlOffsetDocument document;
    document.SetText(L"<a b='1' c/>");
    AttributeCursor attributes(1);
    EXPECT_TRUE(document.GetNextAttribute(attributes));
    EXPECT_TRUE(document.GetNextAttribute(attributes));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(document.GetNextAttribute(attributes));
        EXPECT_TRUE(attributes.Name().empty() && attributes.Value().empty());
    }
    attributes.Begin(1);
    ASSERT_TRUE(document.GetNextAttribute(attributes));
    EXPECT_EQ(attributes.Name(), L"b");
}

TEST(AttributeCursors, GoOnAfterAChangeElsewhere) {
    XmlOffsetDocument document;
    document.SetText(L"<r><x/><a b='1' c='2'/></r>");
    AttributeCursor attributes(3);
    ASSERT_TRUE(document.GetNextAttribute(attributes));
    ASSERT_TRUE(document.SetAttribute(2, L"long", L"which moves what follows"));
    ASSERT_TRUE(document.GetNextAttribute(attributes));
    EXPECT_EQ(attributes.Name(), L"c");
    EXPECT_EQ(attributes.Value(), L"2");
}

TEST(AttributeCursors, EndInATagThatHasBecomeTooShort) {
    XmlOffsetDocument document;
    document.SetText(L"<a b='a value of many units' c='2'/>");
    AttributeCursor attributes(1);
    ASSERT_TRUE(document.GetNextAttribute(attributes));
    ASSERT_TRUE(document.SetAttribute(1, L"b", L""));
    EXPECT_FALSE(document.GetNextAttribute(attributes));
    document.SetText(L"<a/>");
    EXPECT_FALSE(document.GetNextAttribute(attributes));
}

TEST(AttributeCursors, AllocateNothingForWhatIsNoLongerThanBefore) {
    struct Reading {
        XmlOffsetDocument document;
        AttributeCursor attributes;
        int count = 0;
    } reading;
    reading.document.SetText(L"<a first_of_many_units='&lt; a value of many units'"
                             L" other_of_many_units='&amp; a value of few'/>");
    const auto readAll = [&at = reading] {
        at.attributes.Begin(1);
        while (at.document.GetNextAttribute(at.attributes)) ++at.count;
    };
    EXPECT_EQ(CountAllocations(readAll), 2u); // a name and a value
    EXPECT_EQ(CountAllocations(readAll), 0u);
    EXPECT_EQ(reading.count, 4);
}

TEST(AttributeCursors, StayWhereTheyWereWhenMemoryRunsOut) {
    struct Reading {
        XmlOffsetDocument document;
        AttributeCursor attributes{1};
    };
    const auto prepare = [] {
        auto reading = std::make_unique<Reading>();
        reading->document.SetText(L"<a b='1' name_of_many_units='&lt; value of many units'/>");
        reading->document.GetNextAttribute(reading->attributes);
        return reading;
    };
    const auto next = [](Reading& at) { at.document.GetNextAttribute(at.attributes); };
    const auto check = [](Reading& at, bool failed) {
        ASSERT_TRUE(failed);
        ASSERT_TRUE(at.document.GetNextAttribute(at.attributes));
        EXPECT_EQ(at.attributes.Name(), L"name_of_many_units");
        EXPECT_EQ(at.attributes.Value(), L"< value of many units");
        EXPECT_FALSE(at.document.GetNextAttribute(at.attributes));
    };
    EXPECT_EQ(FailEachAllocation(prepare, next, check), 2u);
}

// To look through the name again at each attribute would be 2e12 units, which no processor compares
// before the suite's limit ends the program. To look through it once takes milliseconds.
TEST(AttributeCursors, LookForALongTagsNameOnceOnly) {
    constexpr std::size_t kCount = 1000000;
    std::wstring tag = L"<" + std::wstring(2 * kCount, L'a');
    for (std::size_t i = 0; i < kCount; ++i) tag += L" b";
    XmlOffsetDocument document;
    ASSERT_TRUE(document.SetText(std::wstring_view(tag + L"/>")));
    AttributeCursor attributes(1);
    std::size_t count = 0;
    while (document.GetNextAttribute(attributes)) ++count;
    EXPECT_EQ(count, kCount);
}

TEST(AttributeCursors, ReadTheCurrentElementOfAStream) {
    constexpr wchar_t kText[] = L"<r a=\"1\" b='&lt;2>'><e/><e x x='y' z=q>text</e>\r\n"
                                L"<deep long_name_of_one='v'><in w=1 /></deep></r>";
    constexpr wchar_t kExpected[] = L"r: [a|1][b|<2>]\ne: \ne: [x|x][x|y][z|q]\n"
                                    L"deep: [long_name_of_one|v]\nin: [w|1]\n";
    const StreamFile file(kText, L"UTF-8");
    for (std::int32_t block = 1; block < 150; ++block) {
        XmlOffsetDocument document;
        ASSERT_TRUE(document.OpenForReading(file.Path(), {.encoding = {}, .blockSize = block}));
        std::wstring found;
        WalkStream(document, found);
        ASSERT_EQ(found, kExpected) << "block of " << block;
    }
}

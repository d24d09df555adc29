#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/Navigation.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;

namespace {

class Navigation : public testing::Test {
protected:
    void Load(const wchar_t* text) { document_.SetText(text); }

    // The attribute n of what is found from the present position; "-" when nothing is.
    std::wstring Find(const wchar_t* path = nullptr) {
        if (!document_.FindElement(path)) return L"-";
        return document_.GetAttribute(document_.CurrentPosition(), L"n");
    }
    std::wstring FindChild(const wchar_t* path = nullptr) {
        if (!document_.FindChildElement(path)) return L"-";
        return document_.GetAttribute(document_.ChildPosition(), L"n");
    }
    std::wstring FindFromStart(const wchar_t* path) {
        document_.ResetPosition(0, 0, 0);
        return Find(path);
    }
    // Into the root element.
    void EnterRoot() {
        document_.ResetPosition(0, 0, 0);
        ASSERT_TRUE(document_.FindElement());
        ASSERT_TRUE(document_.IntoElement());
    }
    void ExpectPosition(std::int32_t parent, std::int32_t current, std::int32_t child) {
        EXPECT_EQ(document_.ParentPosition(), parent);
        EXPECT_EQ(document_.CurrentPosition(), current);
        EXPECT_EQ(document_.ChildPosition(), child);
    }

    XmlOffsetDocument document_;
};

constexpr const wchar_t* kTree = L"<r n='r'>"                                       // 1
                                 L"<a n='1'><b n='2'/></a>"                         // 2 3
                                 L"<a n='3' k='x'>"                                 // 4
                                 L"<b n='4' k='&lt;y'/><c n='5'><b n='6'/></c></a>" // 5 6 7
                                 L"<d n='7'/>"                                      // 8
                                 L"</r>";

} // namespace

TEST_F(Navigation, FindsTheNextSiblingWithoutAPath) {
    Load(kTree);
    EXPECT_EQ(Find(), L"r");
    ExpectPosition(0, 1, 0);
    EXPECT_EQ(document_.State().nodeType, kNodeElement);
    EXPECT_EQ(Find(), L"-");
    ExpectPosition(0, 1, 0);
    ASSERT_TRUE(document_.IntoElement());
    EXPECT_EQ(Find(), L"1");
    EXPECT_EQ(Find(L""), L"3");
    EXPECT_EQ(Find(nullptr), L"7");
    EXPECT_EQ(Find(nullptr), L"-");
    ExpectPosition(1, 8, 0);
}

TEST_F(Navigation, FindsNothingInAnEmptyDocument) {
    EXPECT_FALSE(document_.FindElement());
    EXPECT_FALSE(document_.FindElement(L"//a"));
    EXPECT_FALSE(document_.FindElement(L"/a"));
    EXPECT_FALSE(document_.FindChildElement());
    EXPECT_FALSE(document_.IntoElement());
    EXPECT_FALSE(document_.OutOfElement());
    document_.State().records->Clear();
    EXPECT_FALSE(document_.FindElement());
    EXPECT_FALSE(document_.FindElement(L"//a"));
    EXPECT_FALSE(document_.OutOfElement());
}

TEST_F(Navigation, FindsByNameFromTheCurrentElementOn) {
    Load(kTree);
    EnterRoot();
    EXPECT_EQ(Find(L"a"), L"1");
    EXPECT_EQ(Find(L"a"), L"3");
    EXPECT_EQ(Find(L"a"), L"-");
    EXPECT_EQ(Find(L"d"), L"7");
    EXPECT_EQ(Find(L"a"), L"-");
}

TEST_F(Navigation, ComparesWholeNames) {
    Load(L"<ab n='1'/><a n='2'/><abc n='3'/>");
    EXPECT_EQ(FindFromStart(L"a"), L"2");
    EXPECT_EQ(FindFromStart(L"abc"), L"3");
    EXPECT_EQ(FindFromStart(L"abcd"), L"-");
    EXPECT_EQ(FindFromStart(L"A"), L"-");
}

TEST_F(Navigation, IgnoresCaseWhenTheDocumentDoes) {
    document_.SetFlags(kDocIgnoreCase);
    Load(L"<\xE9"
         L"A n='1'/><Ab n='2'/>");
    EXPECT_EQ(FindFromStart(L"aB"), L"2");
    EXPECT_EQ(FindFromStart(L"\xE9"
                            L"A"),
              L"1");
    // After an equal unit that isn't ASCII, case matters.
    EXPECT_EQ(FindFromStart(L"\xE9"
                            L"a"),
              L"-");
}

TEST_F(Navigation, FollowsARelativePath) {
    Load(kTree);
    EXPECT_EQ(Find(L"r/d"), L"7");
    ExpectPosition(1, 8, 0);
    EXPECT_EQ(FindFromStart(L"r/a/b"), L"2");
    EXPECT_EQ(FindFromStart(L"r/*/c/*"), L"6");
    EXPECT_EQ(FindFromStart(L"a"), L"-");
}

TEST_F(Navigation, TriesTheNextMatchOfAStepWhenTheFirstLeadsNowhere) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a/c"), L"5");
    EXPECT_EQ(FindFromStart(L"r/a/c/b"), L"6");
    EXPECT_EQ(FindFromStart(L"r/a/c/d"), L"-");
    EXPECT_EQ(FindFromStart(L"r/*/b[@n=4]"), L"4");
    Load(L"<r><a><b/></a><a><b><c/></b><b><d n='1'/></b></a></r>");
    EXPECT_EQ(FindFromStart(L"r/a/b/d"), L"1");
}

TEST_F(Navigation, TriesNoOtherMatchOfACountedStep) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a[1]/c"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a[2]/c"), L"5");
    Load(L"<r><a><b/><b><c n='1'/></b></a><a><b><c n='2'/></b></a></r>");
    EXPECT_EQ(FindFromStart(L"r/a/b[1]/c"), L"2");
}

TEST_F(Navigation, FollowsAnAbsolutePathFromAnywhere) {
    Load(kTree);
    EnterRoot();
    EXPECT_EQ(Find(L"/r/a/c"), L"5");
    ExpectPosition(4, 6, 0);
    EXPECT_EQ(Find(L"/r"), L"r");
    EXPECT_EQ(Find(L"/a"), L"-");
    EXPECT_EQ(Find(L"/r/a/b"), L"2");
    EXPECT_EQ(Find(L"/r/a/b"), L"2");
}

TEST_F(Navigation, SearchesBelowAndOnwardsInDocumentOrder) {
    Load(kTree);
    EXPECT_EQ(Find(L"//b"), L"2");
    EXPECT_EQ(Find(L"//b"), L"4");
    EXPECT_EQ(Find(L"//b"), L"6");
    ExpectPosition(6, 7, 0);
    EXPECT_EQ(Find(L"//d"), L"7");
    EXPECT_EQ(Find(L"//b"), L"-");
    EXPECT_EQ(FindFromStart(L"//*"), L"r");
    EXPECT_EQ(Find(L"//*"), L"1");
    EXPECT_EQ(FindFromStart(L"//a/b"), L"-");
}

TEST_F(Navigation, SearchesBelowTheParentBeforeItsFirstChild) {
    Load(kTree);
    document_.ResetPosition(4, 0, 0);
    EXPECT_EQ(Find(L"//b"), L"4");
    document_.ResetPosition(3, 0, 0);
    EXPECT_EQ(Find(L"//c"), L"5");
}

TEST_F(Navigation, CountsMatchesFromOne) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a[1]"), L"1");
    EXPECT_EQ(FindFromStart(L"r/a[2]"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[3]"), L"-");
    EXPECT_EQ(FindFromStart(L"r/*[3]"), L"7");
    EXPECT_EQ(FindFromStart(L"//b[3]"), L"6");
    EXPECT_EQ(FindFromStart(L"//b[4]"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a[4294967297]"), L"-");
    EnterRoot();
    EXPECT_EQ(Find(L"a[2]"), L"3");
    EnterRoot();
    EXPECT_EQ(Find(L"a"), L"1");
    EXPECT_EQ(Find(L"a[1]"), L"3");
}

TEST_F(Navigation, FindsNoSecondWhereThereIsOne) {
    Load(L"<a n='1'/>");
    EXPECT_EQ(Find(L"a[2]"), L"-");
    EXPECT_EQ(Find(L"a[0]"), L"-");
    EXPECT_EQ(Find(L"a[1]"), L"1");
}

TEST_F(Navigation, TakesZeroForTheNameOfAChildWhichNoneHas) {
    Load(L"<a n='1'><b/></a>");
    EXPECT_EQ(Find(L"a[0]"), L"-");
    EXPECT_EQ(Find(L"a[01]"), L"-");
}

TEST_F(Navigation, FindsByAttributeTests) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a[@k]"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[@z]"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a[@k=x]"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[@k='x']"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[@k=\"x\"]"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[@k=X]"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a[@k=]"), L"-");
    EXPECT_EQ(FindFromStart(L"//b[@n=6]"), L"6");
}

TEST_F(Navigation, ComparesValuesAfterDecoding) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"//b[@k=<y]"), L"4");
    EXPECT_EQ(FindFromStart(L"//b[@k='&lt;y']"), L"4");
    EXPECT_EQ(FindFromStart(L"//b[@k='&#60;&#x79;']"), L"4");
    EXPECT_EQ(FindFromStart(L"//b[@k='&amp;lt;y']"), L"-");
    EXPECT_EQ(FindFromStart(L"//b[@n='&#52;']"), L"4");
    Load(L"<a n='1' k='  x '/><b n='2' k='p]q' e=''/><c n='3' f/>");
    EXPECT_EQ(FindFromStart(L"a[@k=x]"), L"-");
    EXPECT_EQ(FindFromStart(L"b[@k='p]q']"), L"2");
    EXPECT_EQ(FindFromStart(L"b[@e=]"), L"2");
    EXPECT_EQ(FindFromStart(L"c[@f=f]"), L"3");
    document_.SetFlags(kDocTrim);
    EXPECT_EQ(FindFromStart(L"a[@k=x]"), L"1");
    EXPECT_EQ(FindFromStart(L"a[@k=' x ']"), L"1");
}

TEST_F(Navigation, FindsByChildTests) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a[c]"), L"3");
    EXPECT_EQ(FindFromStart(L"r/a[*]"), L"1");
    EXPECT_EQ(FindFromStart(L"r/d[*]"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a[d]"), L"-");
    EXPECT_EQ(FindFromStart(L"//*[b]"), L"1");
}

TEST_F(Navigation, FindsTheElementWhoseAttributeIsAddressed) {
    Load(kTree);
    EXPECT_EQ(FindFromStart(L"r/a/@k"), L"3");
    ExpectPosition(1, 4, 0);
    EXPECT_EQ(FindFromStart(L"r/a[1]/@k"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a/@z"), L"-");
    EXPECT_EQ(FindFromStart(L"r/a/b/@k"), L"4");
}

TEST_F(Navigation, FindsNothingByABadPathAndStaysWhereItIs) {
    Load(kTree);
    EnterRoot();
    ASSERT_EQ(Find(), L"1");
    for (const wchar_t* path : {L"a[", L"/", L"a//b", L"@n", L"a/@n/b", L"a[1", L"a b"}) {
        EXPECT_EQ(Find(path), L"-");
        EXPECT_EQ(FindChild(path), L"-");
        ExpectPosition(1, 2, 0);
    }
}

TEST_F(Navigation, FindsChildrenOfTheCurrentElementOneByOne) {
    Load(kTree);
    ASSERT_EQ(Find(L"r/a[2]"), L"3");
    EXPECT_EQ(FindChild(), L"4");
    ExpectPosition(1, 4, 5);
    EXPECT_EQ(FindChild(L"b"), L"-");
    ExpectPosition(1, 4, 5);
    EXPECT_EQ(FindChild(), L"5");
    EXPECT_EQ(FindChild(), L"-");
    ExpectPosition(1, 4, 6);
}

TEST_F(Navigation, FindsTheNextElementFirstWhenNoneIsCurrent) {
    Load(kTree);
    EXPECT_EQ(FindChild(L"d"), L"7");
    ExpectPosition(0, 1, 8);
    document_.ResetPosition(0, 0, 0);
    EXPECT_EQ(FindChild(L"z"), L"-");
    ExpectPosition(0, 1, 0);
}

TEST_F(Navigation, MovesTheCurrentElementToTheParentOfAFindBelow) {
    Load(kTree);
    EXPECT_EQ(FindChild(L"a/c"), L"5");
    ExpectPosition(1, 4, 6);
    EXPECT_EQ(FindChild(L"/r/a/b"), L"2");
    ExpectPosition(1, 2, 3);
    EXPECT_EQ(FindChild(L"/r"), L"r");
    ExpectPosition(0, 0, 1);
    EXPECT_FALSE(document_.IntoElement());
}

TEST_F(Navigation, LeavesTheCurrentElementInNoSearchBelowIt) {
    Load(kTree);
    EnterRoot();
    ASSERT_EQ(Find(), L"1");
    EXPECT_EQ(FindChild(L"//c"), L"-");
    EXPECT_EQ(FindChild(L"//b"), L"2");
    EXPECT_EQ(FindChild(L"//b"), L"-");
    ASSERT_EQ(Find(), L"3");
    EXPECT_EQ(FindChild(L"//b[2]"), L"6");
    ExpectPosition(4, 6, 7);
}

TEST_F(Navigation, GoesIntoAndOutOfElements) {
    Load(kTree);
    EXPECT_FALSE(document_.IntoElement());
    EXPECT_FALSE(document_.OutOfElement());
    ASSERT_EQ(FindChild(L"a[2]"), L"3");
    EXPECT_TRUE(document_.IntoElement());
    ExpectPosition(1, 4, 0);
    EXPECT_EQ(document_.State().nodeType, kNodeElement);
    EXPECT_TRUE(document_.IntoElement());
    ExpectPosition(4, 0, 0);
    EXPECT_EQ(document_.State().nodeType, 0);
    EXPECT_EQ(Find(), L"4");
    EXPECT_TRUE(document_.OutOfElement());
    ExpectPosition(1, 4, 5);
    EXPECT_EQ(document_.State().nodeType, kNodeElement);
    EXPECT_TRUE(document_.OutOfElement());
    ExpectPosition(0, 1, 4);
    EXPECT_FALSE(document_.OutOfElement());
}

TEST_F(Navigation, GoesUpFromBeforeTheFirstChild) {
    Load(kTree);
    EnterRoot();
    EXPECT_TRUE(document_.OutOfElement());
    ExpectPosition(0, 1, 0);
}

TEST_F(Navigation, LeavesANodeWhenItMoves) {
    Load(L"<r><a/><!--x--><b n='1'/></r>");
    EnterRoot();
    ASSERT_TRUE(document_.FindElement(L"a"));
    PutOnNode(document_, kNodeComment, L"<!--x-->");
    EXPECT_FALSE(document_.IntoElement());
    EXPECT_EQ(document_.State().nodeLength, 8);
    EXPECT_EQ(Find(), L"1");
    EXPECT_EQ(document_.State().nodeLength, 0);
    PutOnNode(document_, kNodeComment, L"<!--x-->");
    EXPECT_TRUE(document_.OutOfElement());
    EXPECT_EQ(document_.State().nodeLength, 0);
    EXPECT_EQ(document_.State().nodeOffset, 0);
}

TEST_F(Navigation, RefusesPositionsThatAreNoElements) {
    Load(kTree);
    for (const std::int32_t position : {-1, 9, 1000000, 0x7FFFFFFF}) {
        document_.ResetPosition(0, position, 0);
        EXPECT_FALSE(document_.FindElement());
        EXPECT_FALSE(document_.FindElement(L"//b"));
        EXPECT_FALSE(document_.FindChildElement());
        EXPECT_FALSE(document_.IntoElement());
        document_.ResetPosition(position, 0, 0);
        EXPECT_FALSE(document_.FindElement(L"b"));
        EXPECT_FALSE(document_.OutOfElement());
        document_.ResetPosition(0, 1, position);
        EXPECT_FALSE(document_.FindChildElement());
    }
}

TEST_F(Navigation, EndsForPositionsThatDoNotBelongTogether) {
    Load(kTree);
    const wchar_t* const paths[] = {nullptr, L"//z", L"/r/z", L"z", L"*/z[2]", L"//*[9]"};
    for (std::int32_t parent = 0; parent < 9; ++parent) {
        for (std::int32_t current = 0; current < 9; ++current) {
            for (std::int32_t child = 0; child < 9; ++child) {
                for (const wchar_t* path : paths) {
                    document_.ResetPosition(parent, current, child);
                    EXPECT_LE(document_.FindElement(path), path == nullptr);
                    document_.ResetPosition(parent, current, child);
                    EXPECT_LE(document_.FindChildElement(path), path == nullptr);
                }
                document_.ResetPosition(parent, current, child);
                EXPECT_EQ(document_.IntoElement(), current != 0);
                EXPECT_EQ(document_.OutOfElement(), current != 0 || parent != 0);
            }
        }
    }
}

TEST_F(Navigation, FindsAmongElementsThatWereHandedUp) {
    Load(L"<r n='r'><a n='1'><b n='2'/><c n='3'></r>");
    EnterRoot();
    EXPECT_EQ(Find(L"b"), L"2");
    EXPECT_EQ(Find(L"c"), L"3");
    EXPECT_EQ(Find(), L"-");
}

TEST_F(Navigation, WalksAMillionLevelsWithoutRecursion) {
    constexpr std::size_t kDepth = 1000000;
    std::wstring text;
    text.reserve(kDepth * 7 + 20);
    for (std::size_t i = 0; i < kDepth; ++i) text += L"<a>";
    text += L"<z n='1'/>";
    for (std::size_t i = 0; i < kDepth; ++i) text += L"</a>";
    ASSERT_TRUE(document_.SetText(std::wstring_view(text)));
    EXPECT_EQ(Find(L"//z"), L"1");
    EXPECT_EQ(Find(L"//z"), L"-");
    EXPECT_TRUE(document_.OutOfElement());
    EXPECT_TRUE(document_.AddElement(L"y", nullptr, kAddAsChild | kAddNoLineEnds));
    EXPECT_EQ((*document_.State().records)[0].length, text.size() + 4);
    EXPECT_EQ((*document_.State().records)[1].length, text.size() + 4);
}

TEST_F(Navigation, ResolvesAPathOfAHundredThousandSteps) {
    constexpr std::size_t kDepth = 100000;
    std::wstring text;
    std::wstring path = L"a";
    for (std::size_t i = 0; i < kDepth; ++i) text += L"<a>";
    for (std::size_t i = 0; i < kDepth; ++i) text += L"</a>";
    for (std::size_t i = 1; i < kDepth; ++i) path += L"/a";
    ASSERT_TRUE(document_.SetText(std::wstring_view(text)));
    EXPECT_TRUE(document_.FindElement(path.c_str()));
    EXPECT_EQ(document_.CurrentPosition(), static_cast<std::int32_t>(kDepth));
    document_.ResetPosition(0, 0, 0);
    EXPECT_FALSE(document_.FindElement((path + L"/a").c_str()));
}

TEST_F(Navigation, FindsTheLastOfTwoHundredThousand) {
    constexpr std::int32_t kCount = 200000;
    std::wstring text = L"<r>";
    for (std::int32_t i = 0; i < kCount; ++i) text += L"<a/>";
    text += L"</r>";
    ASSERT_TRUE(document_.SetText(std::wstring_view(text)));
    EXPECT_TRUE(document_.FindElement(L"r/a[200000]"));
    EXPECT_EQ(document_.CurrentPosition(), kCount + 1);
    EXPECT_FALSE(document_.FindElement(L"/r/a[200001]"));
}

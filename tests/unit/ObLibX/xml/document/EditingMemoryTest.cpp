// What is left when memory runs out: the operation throws, and nothing has changed.
#include <gtest/gtest.h>

#include <memory>

#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;
using obtest::CountAllocations;
using obtest::FailEachAllocation;

namespace {

constexpr const wchar_t* kText = L"<r><a x='&lt;1234567890'>text &amp; more<![CDATA[and more]]></a>"
                                 L"<b/><c><d/></c></r>";

// Text and positions of a document, and its elements.
struct Snapshot {
    explicit Snapshot(const XmlOffsetDocument& document)
        : text(document.Text()), tree(TreeOf(document.State())), parent(document.ParentPosition()),
          current(document.CurrentPosition()), child(document.ChildPosition()),
          deleted(document.State().deletedPos), next(document.State().nextFreePos),
          flags(document.Flags()) {}
    bool operator==(const Snapshot&) const = default;

    std::wstring text;
    std::vector<TreeElement> tree;
    std::int32_t parent, current, child, deleted, next;
    std::uint32_t flags;
};

// A document without room in its text or its records, on its second element.
std::unique_ptr<XmlOffsetDocument> FullDocument() {
    auto document = std::make_unique<XmlOffsetDocument>();
    document->SetText(kText);
    document->ResetPosition(1, 2, 0);
    std::wstring(document->Text()).swap(document->State().text);
    document->State().nextFreePos = static_cast<std::int32_t>(document->State().records->Size());
    return document;
}

// Every failure leaves what there was, and the next attempt comes through. Some must happen.
template <typename Work>
void ExpectNothingLost(Work work) {
    const Snapshot before(*FullDocument());
    const auto check = [&](XmlOffsetDocument& document, bool failed) {
        ASSERT_TRUE(failed);
        EXPECT_TRUE(Snapshot(document) == before);
        ExpectSoundLinks(document.State());
        work(document);
        ExpectSoundLinks(document.State());
    };
    EXPECT_GT(FailEachAllocation(FullDocument, work, check), 0u);
}

} // namespace

TEST(OutOfMemory, LeavesAllAsItWasWhenAnElementIsAdded) {
    for (const std::uint32_t flags : {0u, kAddCdata, kAddBefore, kAddAsChild, kAddAtStart}) {
        ExpectNothingLost([flags](XmlOffsetDocument& document) {
            EXPECT_TRUE(document.AddElement(L"a_name_that_is_long_enough",
                                            L"a value ]]> that is long enough", flags));
        });
    }
}

TEST(OutOfMemory, LeavesAllAsItWasWhenASingleTagIsOpened) {
    ExpectNothingLost([](XmlOffsetDocument& document) {
        document.ResetPosition(1, 3, 0);
        bool added = false;
        try {
            added = document.AddElement(L"n", nullptr, kAddAsChild);
        } catch (...) {
            document.ResetPosition(1, 2, 0);
            throw;
        }
        EXPECT_TRUE(added);
    });
}

TEST(OutOfMemory, LeavesAllAsItWasWhenAnAttributeIsSet) {
    for (const wchar_t* name : {L"x", L"an_attribute_that_is_new"}) {
        ExpectNothingLost([name](XmlOffsetDocument& document) {
            EXPECT_TRUE(document.SetAttribute(2, name, L"a value & that is long enough"));
        });
    }
}

TEST(OutOfMemory, LeavesAllAsItWasWhenSomethingIsRead) {
    ExpectNothingLost([](XmlOffsetDocument& document) {
        EXPECT_EQ(document.GetData(2), L"text & moreand more");
    });
    ExpectNothingLost([](XmlOffsetDocument& document) {
        EXPECT_EQ(document.GetAttribute(2, L"x"), L"<1234567890");
    });
}

TEST(OutOfMemory, LeavesTheDocumentWhenANameIsRead) {
    const auto prepare = [] {
        auto document = std::make_unique<XmlOffsetDocument>();
        document->SetText(L"<a_name_of_many_letters an_attribute_of_many_letters='1'/>");
        document->FindElement();
        return document;
    };
    const auto work = [](XmlOffsetDocument& document) {
        EXPECT_EQ(document.GetTagName(), L"a_name_of_many_letters");
        EXPECT_EQ(document.GetAttributeNameAt(0), L"an_attribute_of_many_letters");
    };
    const auto check = [&work](XmlOffsetDocument& document, bool failed) {
        ASSERT_TRUE(failed);
        work(document);
    };
    EXPECT_EQ(FailEachAllocation(prepare, work, check), 2u);
}

TEST(OutOfMemory, LeavesThePositionWhenAnElementIsSought) {
    const Snapshot before(*FullDocument());
    for (const wchar_t* path : {L"/r/c/d/e/f/g", L"/r/a[@x='<1234567890']"}) {
        const auto work = [path](XmlOffsetDocument& document) {
            (void)document.FindElement(path);
            (void)document.FindChildElement(path);
        };
        const auto check = [&](XmlOffsetDocument& document, bool failed) {
            ASSERT_TRUE(failed);
            EXPECT_EQ(document.Text(), before.text);
            work(document);
        };
        EXPECT_GT(FailEachAllocation(FullDocument, work, check), 0u);
    }
}

TEST(Allocations, AreNoneForNavigationAndShortPaths) {
    XmlOffsetDocument document;
    document.SetText(kText);
    const auto visitAll = [&visited = document] {
        visited.ResetPosition(0, 0, 0);
        while (visited.FindElement(L"//*")) {
        }
        EXPECT_TRUE(visited.FindElement(L"/r/c/d"));
        EXPECT_TRUE(visited.OutOfElement());
        EXPECT_TRUE(visited.FindElement(L"/r/*[@x]"));
        EXPECT_FALSE(visited.FindElement(L"/r/b[1]/@x"));
        EXPECT_FALSE(visited.FindChildElement(L"d"));
    };
    EXPECT_EQ(CountAllocations(visitAll), 0u);
}

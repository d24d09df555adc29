// After any sequence of edits the records are those of the text indexed anew.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <random>

#include "tests/unit/ObLibX/xml/document/DocumentMaker.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;

namespace {

constexpr const wchar_t* kRichStart =
    L"<?xml version='1.0'?>\r\n<!DOCTYPE r [<!ELEMENT r ANY>]>\r\n<r><!--c--><a x='1'/> t <b y=2/>"
    L"q<c z>&amp;</c></b></r><!--tail-->";
constexpr const wchar_t* kStarts[] = {
    L"",
    L"<r/>",
    L"<r>\r\n<a/>\r\n  <b>text</b>\r\n</r>",
    L"<r><a><b><c><d/></c></b></a><a/><a></a><a>  </a></r>",
    kRichStart,
};
constexpr const wchar_t* kNames[] = {L"a", L"bb", L"c-c", L"d:d", L"_e", L"\xE9g"};
constexpr const wchar_t* kValues[] = {
    nullptr, L"",       L"v",    L"a<b&c>d",
    L"]]>",  L" \r\n ", L"&lt;", L"quite a long value, so that the text has to grow at last"};
constexpr std::uint32_t kFlags[] = {kAddCdata,          kAddNoLineEnds, kAddBlankInEmpty,
                                    kAddKeepReferences, kAddAtStart,    kAddBefore,
                                    kAddAsChild};

class RandomEditor {
public:
    explicit RandomEditor(std::uint32_t seed) : random_(seed) { document_.SetText(Pick(kStarts)); }
    RandomEditor(std::uint32_t seed, const std::wstring& text) : random_(seed) {
        document_.SetText(std::wstring_view(text));
    }
    XmlOffsetDocument& Document() { return document_; }

    void Edit() {
        MoveTo();
        switch (random_() % 8) {
        case 0:
        case 1:
            return SetAttribute();
        case 2:
            return AddUnendedAndOpenIt();
        default:
            return Add();
        }
    }

private:
    template <typename T, std::size_t N>
    const T& Pick(const T (&choices)[N]) {
        return choices[random_() % N];
    }
    std::uint32_t SomeFlags() {
        std::uint32_t flags = 0;
        for (const std::uint32_t flag : kFlags) flags |= random_() % 4 == 0 ? flag : 0;
        return flags;
    }

    // On an element, before the first child of one, or at the start of all.
    void MoveTo() {
        const auto records = static_cast<std::uint32_t>(document_.State().nextFreePos);
        const auto element = static_cast<std::int32_t>(random_() % records);
        const ElementRecord& record = (*document_.State().records)[element];
        if (random_() % 3 == 0) {
            document_.ResetPosition(element, 0, 0);
        } else {
            const bool child = random_() % 2 == 0;
            document_.ResetPosition(static_cast<std::int32_t>(record.parent), element,
                                    child ? static_cast<std::int32_t>(record.firstChild) : 0);
        }
    }

    void Add() {
        std::uint32_t flags = SomeFlags();
        if (document_.CurrentPosition() == 0) flags &= ~kAddAsChild;
        if (document_.CurrentPosition() == 0) document_.State().childPos = 0;
        ASSERT_TRUE(document_.AddElement(Pick(kNames), Pick(kValues), flags));
    }
    // A tag without an end would swallow what follows when it is read anew, so it gets one at once.
    void AddUnendedAndOpenIt() {
        std::uint32_t flags = SomeFlags() & ~kAddAsChild;
        ASSERT_TRUE(document_.AddElement(Pick(kNames), nullptr, flags | kAddNoEndTag));
        ASSERT_TRUE(document_.AddElement(Pick(kNames), Pick(kValues), SomeFlags() | kAddAsChild));
    }
    void SetAttribute() {
        const std::int32_t position = document_.CurrentPosition();
        if (position == 0) return;
        const wchar_t* const value = Pick(kValues);
        const wchar_t* const name = random_() % 2 == 0 ? L"x" : Pick(kNames);
        ASSERT_EQ(document_.SetAttribute(position, name, value, SomeFlags()), value != nullptr);
    }

    std::mt19937 random_;
    XmlOffsetDocument document_;
};

// A document with some of its units lost, doubled or replaced by marks.
std::wstring DamagedDocument(std::uint32_t seed) {
    std::mt19937 random(seed);
    std::wstring text = DocumentMaker(seed).Make();
    for (std::uint32_t damages = 1 + random() % 5; damages > 0; --damages) {
        const std::size_t at = random() % text.size();
        const std::size_t length = random() % 3;
        const std::wstring mark(random() % 2, L"<>/='\"! ?-]["[random() % 12]);
        text.replace(at, length, mark);
        if (text.empty()) text = L"<";
    }
    return text;
}

// Reads everything that can be read, by each means.
void ReadAll(XmlOffsetDocument& document) {
    document.ResetPosition(0, 0, 0);
    while (document.FindElement(L"//*")) {
        const std::int32_t position = document.CurrentPosition();
        EXPECT_EQ(document.GetAttribute(position, document.GetTagName().c_str()).find(L'\0'),
                  std::wstring::npos);
        std::int32_t attributes = 0;
        while (!document.GetAttributeNameAt(attributes).empty()) ++attributes;
        EXPECT_LE(document.GetData(position).size(), document.Text().size());
        EXPECT_LE(static_cast<std::size_t>(attributes), document.Text().size());
    }
}

} // namespace

TEST(RandomEdits, StaySoundInTextsThatAreBadlyFormed) {
    for (std::uint32_t seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomEditor editor(seed, DamagedDocument(seed));
        const std::wstring text = editor.Document().Text();
        for (int edit = 0; edit < 6 && !::testing::Test::HasFailure(); ++edit) {
            ReadAll(editor.Document());
            editor.Edit();
            ExpectSoundLinks(editor.Document().State());
        }
        ASSERT_FALSE(HasFailure()) << Narrow(text) << "\n-> " << Narrow(editor.Document().Text());
    }
}

TEST(RandomEdits, LeaveTheRecordsOfTheTextIndexedAnew) {
    const auto first = static_cast<std::uint32_t>(
        std::chrono::steady_clock::now().time_since_epoch().count() & 0xFFFFFF);
    // The first hundred are the same in each run.
    for (std::uint32_t round = 0; round < 300; ++round) {
        const std::uint32_t seed = round < 100 ? round : first + round;
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomEditor editor(seed);
        for (int edit = 0; edit < 40; ++edit) {
            editor.Edit();
            ExpectAsIndexedAnew(editor.Document());
            if (HasFatalFailure()) return;
        }
    }
    std::printf("seeds 0 to 99 and %u to %u\n", first + 100, first + 299);
}

TEST(RandomEdits, ReadBackWhatWasWritten) {
    for (const wchar_t* value : kValues) {
        for (const std::uint32_t flags : {0u, kAddCdata, kAddNoLineEnds}) {
            const std::wstring expected = value == nullptr ? L"" : value;
            XmlOffsetDocument document;
            document.SetText(L"<r/>");
            document.FindElement();
            ASSERT_TRUE(document.AddElement(L"a", value, flags | kAddAsChild));
            EXPECT_EQ(document.GetData(document.ChildPosition()), expected);
            ASSERT_TRUE(document.SetAttribute(2, L"x", expected.c_str()));
            EXPECT_EQ(document.GetAttribute(2, L"x"), expected);
            EXPECT_EQ(document.GetData(2), expected);
        }
    }
}

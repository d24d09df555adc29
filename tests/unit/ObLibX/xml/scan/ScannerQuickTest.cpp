// The scanner's quick way and its rules give the same, whatever the text.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/QuickScan.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

class Texts {
public:
    explicit Texts(std::uint32_t seed) : random_(seed) {}

    // Pieces of markup in any order, so that most nodes are well formed and many aren't.
    std::wstring OfPieces(int count) {
        static const std::vector<std::wstring> pieces = {L"<",         L">",
                                                         L"/",         L"=",
                                                         L"\"",        L"'",
                                                         L"!",         L"?",
                                                         L"-",         L"[",
                                                         L"]",         L" ",
                                                         L"\r\n",      L"\t",
                                                         L"\x1",       L"\x1f",
                                                         L"<a",        L"<bcdefgh",
                                                         L"</a>",      L"/>",
                                                         L"<!--",      L"-->",
                                                         L"]]>",       L"<?",
                                                         L"?>",        L"<![C",
                                                         L"<!D",       L" b=\"c",
                                                         L"\" ",       L"d=e",
                                                         L" f='g",     L"text",
                                                         L"\xffff",    L"\xd83d",
                                                         L"<!ENTITY ", L"<![CDATA[",
                                                         L"<!-",       L"longer_than_eight"};
        std::wstring text;
        for (int i = 0; i < count; ++i) {
            text += pieces[random_() % pieces.size()];
        }
        return text;
    }

    // A few units only, of those that mean something and of some that don't.
    std::wstring OfUnits(int count) {
        static const std::wstring units = L"<<<>>>/=\"'!?-[]C ab1";
        std::wstring text;
        for (int i = 0; i < count; ++i) {
            text += units[random_() % units.size()];
        }
        return text;
    }

private:
    std::mt19937 random_;
};

// Where both differ, empty when they don't.
std::string Difference(const std::wstring& text) {
    const std::string quick = Scans(text);
    const std::string plain = PlainScans(text);
    return quick == plain ? "" : Narrow(text) + "\n  quick: " + quick + "\n  rules: " + plain;
}

TEST(ScannerQuick, ReadsPiecesOfMarkupAsTheRulesDo) {
    for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
        const std::wstring text = Texts(seed).OfPieces(1 + seed % 30);
        ASSERT_EQ(Difference(text), "") << "seed " << seed;
    }
}

TEST(ScannerQuick, EqualsTheRulesOverSingleUnits) {
    for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
        const std::wstring text = L"<" + Texts(seed).OfUnits(1 + seed % 40);
        ASSERT_EQ(Difference(text), "") << "seed " << seed;
    }
}

// Each short text of the units that decide.
TEST(ScannerQuick, EqualsTheRulesOverAllShortTags) {
    const std::wstring units = L"</>a=\" ";
    std::size_t count = 1;
    for (int length = 1; length <= 6; ++length) {
        count *= units.size();
        for (std::size_t number = 0; number < count; ++number) {
            std::wstring text = L"<a";
            for (std::size_t rest = number, i = 0; i < static_cast<std::size_t>(length); ++i) {
                text += units[rest % units.size()];
                rest /= units.size();
            }
            ASSERT_EQ(Difference(text), "");
        }
    }
}

// A terminator at every distance, so that it is in every SIMD lane of every step.
TEST(ScannerQuick, EqualsTheRulesAtEveryDistance) {
    for (int distance = 0; distance < 40; ++distance) {
        for (const wchar_t filler : {L'x', L'-', L']', L'?', L'/', L'=', L'\x1', L'\xe000'}) {
            const std::wstring run(distance, filler);
            for (const std::wstring& text :
                 {run + L"<a>", L"<!--" + run + L"-->x", L"<![CDATA[" + run + L"]]>x",
                  L"<?p" + run + L"?>x", L"<a" + run + L">x", L"<a" + run + L" b>x",
                  L"<a b='" + run + L"'>x", L"<a b=\"" + run + L"\"/>x", L"<a b=" + run + L">x",
                  L"<a b=" + run + L"/>x", L"</a" + run + L">x", L"</" + run + L" >x"}) {
                ASSERT_EQ(Difference(text), "");
                for (std::size_t cut = text.size() - 4; cut < text.size(); ++cut) {
                    ASSERT_EQ(Difference(text.substr(0, cut)), "");
                }
            }
        }
    }
}

// Units that agree with a terminator in one of their bytes only.
TEST(ScannerQuick, TakesNoUnitForAnotherWithTheSameByte) {
    for (const wchar_t unit : {L'\x3c3c', L'\x3c00', L'\x003d', L'\x3e3e', L'\x223e', L'\x2000',
                               L'\x8020', L'\xff3e', L'\x0120', L'\x2f2f'}) {
        const std::wstring text =
            std::wstring(L"<a") + unit + L" b=\"" + unit + L"\" c=" + unit + L"d>" + unit + L"</a>";
        ASSERT_EQ(Difference(text), "");
        ASSERT_EQ(Difference(std::wstring(20, unit) + text), "");
    }
}

// The offset at which the attributes of the first tag end: that of the tag's own '>'.
std::string AttributesLeave(const std::wstring& text) {
    TagScanner scanner(text.data(), text.size(), 0);
    NodeScan scan;
    if (scanner.NextNode(scan) != kNodeElement) {
        return "";
    }
    scanner.cursor = scanner.tokenEnd + 1;
    if (scanner.FindAttribute(L"\x2", 1)) {
        return Narrow(text) + " has an attribute that isn't there";
    }
    const std::int32_t end = scan.length - 1;
    return scanner.cursor == end ? "" : Narrow(text) + " at " + std::to_string(scanner.cursor);
}

TEST(ScannerAttributes, EndWhereTheTagEnds) {
    int tags = 0;
    for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
        for (const std::wstring& text :
             {L"<a " + Texts(seed).OfPieces(1 + seed % 20), L"<a " + Texts(seed).OfUnits(20)}) {
            ASSERT_EQ(AttributesLeave(text), "") << "seed " << seed;
            tags += text.find(L'>') != std::wstring::npos;
        }
    }
    EXPECT_GT(tags, 10000);
}

template <typename Set>
void ExpectEachUnitFound(Set set) {
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        std::wstring text(24, L'x');
        text[13] = static_cast<wchar_t>(unit);
        const wchar_t* end = text.data() + text.size();
        const wchar_t* found = FindUnit(text.data(), end, set);
        ASSERT_EQ(found, set.One(text[13]) ? text.data() + 13 : end) << unit;
    }
}

TEST(ScannerQuick, FindsTheUnitsOfASetAndNoOthers) {
    ExpectEachUnitFound(EqualTo{L'<'});
    ExpectEachUnitFound(EqualTo{L'\xfffe'});
    ExpectEachUnitFound(EqualsOrGreater{});
    ExpectEachUnitFound(TagNameEnd{});
    ExpectEachUnitFound(UnquotedValueEnd{});
    ExpectEachUnitFound(NameEnd{});
    ExpectEachUnitFound(AttributeNameEnd{});
}

TEST(ScannerQuick, ReadsNothingPastTheEnd) {
    for (std::size_t length = 0; length < 20; ++length) {
        const std::wstring text = std::wstring(length, L'x') + L"<<<<<<<<<<<<<<<<";
        const wchar_t* end = text.data() + length;
        EXPECT_EQ(FindUnit(text.data(), end, EqualTo{L'<'}), end);
    }
}

} // namespace
} // namespace ObLibX

// The index of any text is consistent. The seed of a text that breaks it is printed.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/unit/ObLibX/xml/document/Records.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

// Elements that fit into each other, with now and then a piece among them that doesn't belong.
class Texts {
public:
    explicit Texts(std::uint32_t seed) : random_(seed), noise_(seed % 4 * 3) {}

    std::wstring Take() {
        text_ = L"<r>";
        names_ = {L"r"};
        for (std::uint32_t i = random_() % 60; i > 0 && !names_.empty(); --i) {
            if (random_() % 100 < noise_) {
                text_ += Noise();
            } else {
                AddPiece();
            }
        }
        for (; !names_.empty(); names_.pop_back()) {
            text_ += L"</" + names_.back() + L">";
        }
        return text_;
    }

private:
    std::wstring Noise() {
        static const std::vector<std::wstring> pieces = {
            L"</a>", L"</b>", L"<a>",    L"<b x=/>", L"<1>",   L"<a",      L"<!--",
            L"<!x>", L"<![",  L"<!D[<!", L"<?",      L"</A >", L"<A b=\"", L"</"};
        return pieces[random_() % pieces.size()];
    }

    void AddPiece() {
        static const std::vector<std::wstring> pieces = {
            L"text",      L" ", L"<f/>", L"<g h='>' i=\"/>\"/>", L"<!--<x>-->", L"<![CDATA[</a>]]>",
            L"<?p <q> ?>"};
        static const std::vector<std::wstring> names = {L"a", L"b", L"a", L"longer_name"};
        const std::uint32_t kind = random_() % 4;
        if (kind == 0) {
            names_.push_back(names[random_() % names.size()]);
            text_ += L"<" + names_.back() + (random_() % 2 == 0 ? L">" : L" c='d>' e=f >");
        } else if (kind == 1 && names_.size() > 1) {
            text_ += L"</" + names_.back() + (random_() % 2 == 0 ? L">" : L" >");
            names_.pop_back();
        } else {
            text_ += pieces[random_() % pieces.size()];
        }
    }

    std::mt19937 random_;
    std::uint32_t noise_; // of a hundred pieces
    std::wstring text_;
    std::vector<std::wstring> names_; // of the elements that are open
};

std::wstring TextOf(std::uint32_t seed) { return Texts(seed).Take(); }

TEST(ParserRandom, EveryIndexIsConsistent) {
    XmlOffsetDocument document;
    int good = 0;
    int bad = 0;
    for (std::uint32_t seed = 1; seed <= 30000; ++seed) {
        document.SetFlags(seed % 2 == 0 ? kDocIgnoreCase : 0);
        const std::wstring text = TextOf(seed);
        const bool answer = document.SetText(std::wstring_view(text));
        ASSERT_EQ(FaultsOf(document), "") << "seed " << seed << " " << Narrow(text);
        ASSERT_EQ(answer, document.Result().empty()) << "seed " << seed << " " << Narrow(text);
        (answer ? good : bad)++;
    }
    EXPECT_GT(bad, 5000);
    EXPECT_GT(good, 5000);
}

TEST(ParserRandom, EveryReportIsXml) {
    XmlOffsetDocument document;
    XmlOffsetDocument reports;
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        document.SetText(std::wstring_view(TextOf(seed)));
        reports.SetText(L"<reports>" + document.Result() + L"</reports>");
        ASSERT_TRUE(reports.Result().empty()) << "seed " << seed;
    }
}

} // namespace
} // namespace ObLibX

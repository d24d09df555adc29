// Streams beside memory over random documents, and any calls in any order.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

#include "tests/unit/ObLibX/xml/document/DocumentMaker.h"
#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

// A file costs a good deal more under Windows.
#ifdef _WIN32
constexpr std::uint32_t kTimes = 1;
#else
constexpr std::uint32_t kTimes = 5;
#endif

class Chance {
public:
    explicit Chance(std::uint32_t seed) : random_(seed) {}
    std::uint32_t Below(std::uint32_t below) {
        return static_cast<std::uint32_t>(random_()) % below;
    }
    template <typename T, std::size_t N>
    const T& Pick(const T (&choices)[N]) {
        return choices[Below(N)];
    }

private:
    std::mt19937 random_;
};

constexpr const wchar_t* kEncodings[] = {L"UTF-8", L"UTF-16", L"UTF-16BE"};
constexpr std::uint32_t kFlags[] = {
    0, 0, kDocIgnoreCase, kDocTrim, kDocCollapse, kDocIgnoreCase | kDocTrim | kDocCollapse};
constexpr const wchar_t* kNames[] = {L"a", L"b", L"item", L"x:y", L"_z", L"A", L"*", L"*", L"*"};
constexpr const wchar_t* kTests[] = {L"",         L"",      L"",      L"[1]",          L"[2]",
                                     L"[3]",      L"[@a0]", L"[@b0]", L"[@item1='x']", L"[@a0=]",
                                     L"[@x:y0=x]"};

std::wstring RandomPath(Chance& chance) {
    if (chance.Below(3) == 0) return L"";
    const std::uint32_t kind = chance.Below(4);
    std::wstring path = kind == 0 ? L"/" : kind == 1 ? L"//" : L"";
    for (std::uint32_t steps = kind == 1 ? 1 : 1 + chance.Below(3); steps > 0; --steps) {
        path.append(chance.Pick(kNames)).append(chance.Pick(kTests));
        if (steps > 1) path += L'/';
    }
    if (kind != 1 && chance.Below(6) == 0) path += L"/@a0";
    return path;
}

std::int32_t RandomBlock(Chance& chance) {
    return static_cast<std::int32_t>(chance.Below(2) == 0 ? 1 + chance.Below(40)
                                                          : 1 + chance.Below(3000));
}

// The text with some of its units changed, so that it is no longer well formed.
std::wstring Damaged(std::wstring text, Chance& chance) {
    constexpr const wchar_t* pieces[] = {L"<",    L">",   L"/",  L"'",    L"\"",   L"=",  L"</a>",
                                         L"<!-x", L"<1>", L"</", L"<![C", L"<!DO", L"&#", L"</zz>"};
    for (std::uint32_t times = 1 + chance.Below(6); times > 0; --times) {
        const std::size_t at = chance.Below(static_cast<std::uint32_t>(text.size()));
        const bool cut = chance.Below(2) == 0;
        text.replace(at, cut ? std::min<std::size_t>(1 + chance.Below(9), text.size() - at) : 0,
                     chance.Below(2) == 0 ? L"" : chance.Pick(pieces));
        if (text.empty()) text = L"<";
    }
    return text;
}

// One document in both modes.
struct Pair {
    XmlOffsetDocument memory;
    XmlOffsetDocument stream;
    std::int64_t furthest = -1; // what memory found last begins here
    std::size_t found = 0;

    // Both search, unless memory finds what has passed already or, mostly, nothing. False when the
    // stream came to an end, so that they can't be compared any further.
    bool Find(const std::wstring& path, Chance& chance);
    // Whether both resolve the path alike from here: a stream knows no attributes of what is open,
    // and counts matches below from here on.
    bool IsAlike(const std::wstring& path) const;
};

bool Pair::IsAlike(const std::wstring& path) const {
    const auto depth = static_cast<std::int32_t>(stream.State().channel->openTags.Depth());
    if (depth == 0) return true;
    if (!path.empty() && path[0] == L'/') return path.find(L'[') == std::wstring::npos;
    const bool partlyPassed = stream.CurrentPosition() == 0 && depth > stream.ParentPosition();
    return !partlyPassed || path.find(L"[@") == std::wstring::npos;
}

bool Pair::Find(const std::wstring& path, Chance& chance) {
    const std::int32_t parent = memory.ParentPosition();
    const std::int32_t current = memory.CurrentPosition();
    const std::int32_t child = memory.ChildPosition();
    const bool inMemory = memory.FindElement(path.c_str());
    if (!inMemory && chance.Below(8) != 0) return true;
    if (inMemory) {
        const auto at = static_cast<std::uint32_t>(memory.CurrentPosition());
        const std::uint32_t start = (*memory.State().records)[at].start;
        if (start <= furthest) {
            memory.ResetPosition(parent, current, child);
            return true;
        }
        furthest = start;
        ++found;
    }
    EXPECT_EQ(inMemory, stream.FindElement(path.c_str()));
    if (inMemory && !testing::Test::HasFailure()) {
        EXPECT_EQ(CurrentElement(memory), CurrentElement(stream));
    }
    return inMemory;
}

constexpr std::int32_t kNonsense[] = {-1,
                                      0,
                                      0,
                                      1,
                                      1,
                                      2,
                                      3,
                                      4,
                                      7,
                                      1000,
                                      65536,
                                      std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()};

// One of all calls with whatever arguments.
void ActInReading(XmlOffsetDocument& document, Chance& chance) {
    const std::int32_t position =
        chance.Below(2) == 0 ? document.CurrentPosition() : chance.Pick(kNonsense);
    switch (chance.Below(16)) {
    case 0:
        document.ResetPosition(chance.Pick(kNonsense), chance.Pick(kNonsense),
                               chance.Pick(kNonsense));
        break;
    case 1:
        document.ResetPosition(chance.Below(4), chance.Below(4), chance.Below(4));
        break;
    case 2:
    case 3:
        (void)document.GetAttribute(position, L"a0");
        (void)document.GetAttributeNameAt(chance.Pick(kNonsense));
        break;
    case 4:
    case 5:
    case 6:
        (void)document.GetData(position);
        break;
    case 7:
    case 8:
        (void)document.IntoElement();
        break;
    case 9:
        (void)document.OutOfElement();
        break;
    case 10:
        EXPECT_FALSE(document.FindChildElement(RandomPath(chance).c_str()));
        EXPECT_FALSE(document.AddElement(L"a", L"b"));
        EXPECT_FALSE(document.SetAttribute(position, L"a", L"b"));
        (void)document.ParseText();
        break;
    default:
        (void)document.FindElement(RandomPath(chance).c_str());
    }
    (void)document.GetTagName();
}

void ActInWriting(XmlOffsetDocument& document, Chance& chance) {
    const std::int32_t position =
        chance.Below(2) == 0 ? document.CurrentPosition() : chance.Pick(kNonsense);
    const std::wstring value(chance.Below(30), L'v');
    switch (chance.Below(14)) {
    case 0:
        document.ResetPosition(chance.Pick(kNonsense), chance.Pick(kNonsense),
                               chance.Pick(kNonsense));
        break;
    case 1:
    case 2:
        document.ResetPosition(chance.Below(4), chance.Below(4), chance.Below(4));
        break;
    case 3:
    case 4:
        (void)document.IntoElement();
        break;
    case 5:
        (void)document.OutOfElement();
        break;
    case 6:
        (void)document.SetAttribute(position, chance.Pick(kNames), value.c_str());
        break;
    case 7:
        (void)document.GetData(position);
        (void)document.GetAttribute(position, L"a");
        (void)document.GetAttributeNameAt(chance.Pick(kNonsense));
        EXPECT_FALSE(document.FindElement());
        EXPECT_FALSE(document.FindChildElement());
        EXPECT_TRUE(document.ParseText());
        break;
    default:
        // Without kAddNoEndTag, so that the result is well formed.
        (void)document.AddElement(chance.Pick(kNames), value.c_str(),
                                  chance.Below(0x8000) & ~kAddNoEndTag);
    }
    (void)document.GetTagName();
}

} // namespace

TEST(StreamsAtRandom, GiveTheElementsThatMemoryGives) {
    for (std::uint32_t seed = 1; seed <= 200 * kTimes; ++seed) {
        Chance chance(seed);
        const std::wstring text = DocumentMaker(seed).Make();
        const StreamFile file(text, chance.Pick(kEncodings));
        const std::uint32_t flags = chance.Pick(kFlags);
        const std::wstring expected = ElementsOfText(text, flags);
        for (int turn = 0; turn < 3; ++turn) {
            const std::int32_t block = RandomBlock(chance);
            ASSERT_EQ(expected,
                      ElementsOfFile(file.Path(), {.encoding = {}, .blockSize = block}, flags))
                << "seed " << seed << ", block of " << block;
        }
    }
}

TEST(StreamsAtRandom, ResolvePathsAsMemoryDoes) {
    std::size_t found = 0;
    for (std::uint32_t seed = 1; seed <= 600 * kTimes; ++seed) {
        Chance chance(seed);
        const std::wstring text = DocumentMaker(seed).Make();
        const StreamFile file(text, L"UTF-8");
        Pair both;
        const std::uint32_t flags = chance.Pick(kFlags);
        both.memory.SetFlags(flags);
        both.stream.SetFlags(flags);
        ASSERT_TRUE(both.memory.SetText(text));
        ASSERT_TRUE(both.stream.OpenForReading(file.Path(),
                                               {.encoding = {}, .blockSize = RandomBlock(chance)}));
        std::wstring paths;
        for (int call = 0; call < 30; ++call) {
            const std::uint32_t what = chance.Below(6);
            if (what == 0 && both.stream.IntoElement()) {
                ASSERT_TRUE(both.memory.IntoElement());
                paths += L"into ";
            } else if (what == 1 && both.memory.OutOfElement()) {
                ASSERT_TRUE(both.stream.OutOfElement());
                paths += L"out ";
            } else if (what > 1) {
                const std::wstring path = RandomPath(chance);
                if (!both.IsAlike(path)) continue;
                paths += path + L' ';
                const bool goesOn = both.Find(path, chance);
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "seed " << seed << ": " << std::string(paths.begin(), paths.end());
                if (!goesOn) break;
            }
        }
        found += both.found;
    }
    EXPECT_GT(found, 900 * kTimes) << "the paths hardly meet anything";
}

TEST(StreamsAtRandom, NeverPointOutsideTheTextInReading) {
    for (std::uint32_t seed = 1; seed <= 500 * kTimes; ++seed) {
        Chance chance(seed);
        std::wstring text = DocumentMaker(seed).Make();
        if (seed % 2 == 0) text = Damaged(text, chance);
        const StreamFile file(text, chance.Pick(kEncodings));
        XmlOffsetDocument document;
        document.SetFlags(chance.Pick(kFlags));
        ASSERT_TRUE(document.OpenForReading(file.Path(),
                                            {.encoding = {}, .blockSize = RandomBlock(chance)}));
        for (int call = 0; call < 60; ++call) {
            ActInReading(document, chance);
            ExpectWithinText(document);
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", call " << call;
        }
        // It still comes to the end, by calls that make sense.
        document.ResetPosition(0, 0, 0);
        while (document.FindElement(L"//*") || document.State().nodeLength != 0) {
        }
        ExpectWithinText(document);
        EXPECT_EQ(document.State().channel->openTags.Depth(), 0u) << "seed " << seed;
        EXPECT_TRUE(document.Close());
    }
}

TEST(StreamsAtRandom, GiveTheSameForADamagedFileWhateverTheBlock) {
    for (std::uint32_t seed = 1; seed <= 200 * kTimes; ++seed) {
        Chance chance(seed);
        const StreamFile file(Damaged(DocumentMaker(seed).Make(), chance), L"UTF-8");
        const std::wstring expected = ElementsOfFile(file.Path());
        for (int turn = 0; turn < 3; ++turn) {
            const std::int32_t block = RandomBlock(chance);
            ASSERT_EQ(expected, ElementsOfFile(file.Path(), {.encoding = {}, .blockSize = block}))
                << "seed " << seed << ", block of " << block;
        }
    }
}

TEST(StreamsAtRandom, WriteInOrderWhateverTheCalls) {
    for (std::uint32_t seed = 1; seed <= 200 * kTimes; ++seed) {
        Chance chance(seed);
        const StreamFile file;
        XmlOffsetDocument document;
        const wchar_t* const encoding = chance.Pick(kEncodings);
        ASSERT_TRUE(document.OpenForWriting(file.Path(), {.encoding = encoding,
                                                          .declaration = chance.Below(2) == 0,
                                                          .blockSize = RandomBlock(chance)}));
        for (int call = 0; call < 60; ++call) {
            ActInWriting(document, chance);
            ExpectWithinText(document);
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", call " << call;
        }
        ASSERT_TRUE(document.Close()) << "seed " << seed;
        XmlOffsetDocument written;
        written.SetText(std::wstring_view(Decoded(file.Read(), encoding)));
        EXPECT_FALSE(ResultHas(written, L"unended") || ResultHas(written, L"lone") ||
                     ResultHas(written, L"syntax"))
            << "seed " << seed;
    }
}

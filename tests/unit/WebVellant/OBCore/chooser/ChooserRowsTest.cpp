// Which rows the chooser shows, and what their texts are.
#include <windows.h>

#include <shlwapi.h>

#include <cstdio>
#include <cstring>
#include <limits>

#include "OBCore/chooser/ByteSizeText.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

namespace {

using obcore::ByteSizeText;
using obtest::Chooser;
using obtest::Lines;

constexpr wchar_t kUnknown[] = L" (free space unknown)";

std::wstring Space(std::int64_t free, std::int64_t total) {
    return L" (" + ByteSizeText(free) + L" free of " + ByteSizeText(total) + L")";
}

class ChooserRows : public obtest::ChooserFixture {
protected:
    // The one row of an account with this answer for its space.
    std::wstring RowWithSpace(const std::wstring& space) {
        OneProvider(L"Ann|ann");
        Answer(L"provider7.GetAccountSpace", space);
        const Lines rows = RowsShown();
        EXPECT_EQ(rows.size(), 1u);
        return rows.empty() ? std::wstring() : rows[0];
    }
};

TEST_F(ChooserRows, AreNoneWithoutAProvider) { EXPECT_TRUE(RowsShown().empty()); }

TEST_F(ChooserRows, NameAProviderWithoutAnAccountAndAskForNoSpace) {
    OneProvider(L"0");
    EXPECT_EQ(RowsShown(), Lines{L"Shelf"});
    EXPECT_TRUE(CallsOf({L"GetAccountSpace"}).empty());
}

TEST_F(ChooserRows, NameAProviderWhoseOneProfileHasNoKey) {
    OneProvider(L"Ann|");
    EXPECT_EQ(RowsShown(), Lines{L"Shelf"});
    EXPECT_TRUE(CallsOf({L"GetAccountSpace"}).empty());
}

TEST_F(ChooserRows, NameAProviderWithANegativeCount) {
    OneProvider(L"-5");
    EXPECT_EQ(RowsShown(), Lines{L"Shelf"});
}

TEST_F(ChooserRows, NameASingleAccountAfterItsProvider) {
    OneProvider(L"Ann|ann");
    Answer(L"provider7.GetAccountSpace", L"1073741824,5368709120");
    EXPECT_EQ(RowsShown(), Lines{L"Shelf" + Space(1073741824, 5368709120)});
    EXPECT_EQ(CallsOf({L"GetAccountSpace"}), Lines{L"GetAccountSpace(provider7, \"ann\")"});
}

TEST_F(ChooserRows, NameSeveralAccountsOfAProviderByTheirLabels) {
    OneProvider(L"Ann|ann;Bob|bob");
    Answer(L"provider7.GetAccountSpace.ann", L"1024,2048");
    Answer(L"provider7.GetAccountSpace.bob", L"3072,4096");
    EXPECT_EQ(RowsShown(), (Lines{L"Ann" + Space(1024, 2048), L"Bob" + Space(3072, 4096)}));
}

TEST_F(ChooserRows, ShowSixteenAccountsInTheirOrder) {
    std::wstring accounts;
    Lines expected;
    for (int number = 0; number < 16; ++number) {
        const std::wstring label = L"account " + std::to_wstring(number);
        accounts += (number ? L";" : L"") + label + L"|key" + std::to_wstring(number);
        expected.push_back(label + kUnknown);
    }
    OneProvider(accounts);
    EXPECT_EQ(RowsShown(), expected);
}

TEST_F(ChooserRows, NameASecondProfileWithoutAKeyByItsLabelToo) {
    OneProvider(L"Ann|ann;New|");
    EXPECT_EQ(RowsShown(),
              (Lines{std::wstring(L"Ann") + kUnknown, std::wstring(L"New") + kUnknown}));
}

TEST_F(ChooserRows, BeginWithProvider21WhereverTheWalkMeetsIt) {
    Answer(L"Providers", L"7,9,21,8");
    EXPECT_EQ(RowsShown(), (Lines{L"provider21", L"provider7", L"provider9", L"provider8"}));
}

TEST_F(ChooserRows, LeaveOut21WhenTheManagerHasNoInstanceOfIt) {
    Answer(L"Providers", L"7,21");
    Answer(L"GetProviderInstance.21", L"0");
    EXPECT_EQ(RowsShown(), Lines{L"provider7"});
}

// The walk gives no accounts for it then, so its row has no data.
TEST_F(ChooserRows, BeginWithAnInstanceOf21ThatTheWalkDoesntMeet) {
    Answer(L"Providers", L"7");
    Answer(L"GetProviderInstance.21", L"2");
    Answer(L"provider21.GetAccountProfiles", L"Ann|ann");
    EXPECT_FALSE(Show([](const Chooser& chooser) {
        EXPECT_EQ(chooser.Rows(), (Lines{L"provider21", L"provider7"}));
        chooser.Tick(0);
        EXPECT_FALSE(chooser.ButtonIsEnabled());
        EXPECT_EQ(chooser.ButtonText(), LoginText());
        chooser.Tick(1);
        EXPECT_TRUE(chooser.ButtonIsEnabled());
        chooser.Cancel();
    }));
    EXPECT_TRUE(CallsOf({L"GetAccountSpace"}).empty());
}

TEST_F(ChooserRows, BeginWithEveryAccountOf21) {
    Answer(L"Providers", L"7,21");
    Answer(L"provider21.GetAccountProfiles", L"Ann|ann;Bob|bob");
    Answer(L"provider21.IsAccountLoggedIn", L"1");
    Answer(L"provider21.GetAccountSpace.ann", L"1024,2048");
    Answer(L"provider21.GetAccountSpace.bob", L"3072,4096");
    EXPECT_EQ(RowsShown(),
              (Lines{L"Ann" + Space(1024, 2048), L"Bob" + Space(3072, 4096), L"provider7"}));
}

TEST_F(ChooserRows, LeaveOutWhatIsntOfferedForStoring) {
    Answer(L"Providers", L"30,29,31,32,33,34,35,45,44,46");
    EXPECT_EQ(RowsShown(), (Lines{L"provider29", L"provider35", L"provider44", L"provider46"}));
}

TEST_F(ChooserRows, ComeFromASecondWalkThatBeginsAfterTheFirstHasEnded) {
    Answer(L"Providers", L"7,21");
    RowsShown();
    const std::wstring reset = L"EnumProvidersReset(manager)";
    const std::wstring next = L"EnumStorageProviders(manager)";
    EXPECT_EQ(CallsOf({L"EnumProvidersReset", L"EnumStorageProviders", L"GetProviderInstance"}),
              (Lines{reset, next, next, next, L"GetProviderInstance(manager, 21, 1)", reset, next,
                     next, next}));
    EXPECT_EQ(CallsOf({L"GetDisplayName"}),
              (Lines{L"GetDisplayName(provider21, 1, 128)", L"GetDisplayName(provider7, 1, 128)"}));
}

TEST_F(ChooserRows, AreMadeAnewEachTime) {
    OneProvider(L"Ann|ann;Bob|bob");
    EXPECT_EQ(RowsShown().size(), 2u);
    Answer(L"provider7.GetAccountProfiles", L"Cid|cid");
    EXPECT_EQ(RowsShown(), Lines{std::wstring(L"Shelf") + kUnknown});
}

HRESULT WINAPI RoundToGigabytes(ULONGLONG size, SFBS_FLAGS, PWSTR text, UINT capacity) {
    _snwprintf(text, capacity, L"%.2f GB", static_cast<double>(size) / (1 << 30));
    return S_OK;
}

decltype(&GetProcAddress) realFind = nullptr;

// Wine lacks the call that rounds.
FARPROC WINAPI FindRounding(HMODULE module, LPCSTR name) {
    if (std::strcmp(name, "StrFormatByteSizeEx") != 0) return realFind(module, name);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&RoundToGigabytes));
}

TEST_F(ChooserRows, ShowSpaceRoundedToTheNearestDigit) {
    const obtest::ImportPatch<decltype(&GetProcAddress)> find{"kernel32.dll", "GetProcAddress",
                                                              &FindRounding};
    ASSERT_TRUE(find.Ok());
    realFind = find.Real();
    EXPECT_EQ(RowWithSpace(L"5000000000,-10000000000"), L"Shelf (4.66 GB free of -9.31 GB)");
}

TEST_F(ChooserRows, ShowUnknownSpaceOnlyWhenBothValuesAreUnknown) {
    EXPECT_EQ(RowWithSpace(L"-2,-2"), std::wstring(L"Shelf") + kUnknown);
    EXPECT_EQ(RowWithSpace(L"-2,2048"), L"Shelf" + Space(0, 2048));
    EXPECT_EQ(RowWithSpace(L"1024,-2"), L"Shelf" + Space(1024, -2));
}

TEST_F(ChooserRows, ShowNegativeFreeSpaceAsNoneAndANegativeTotalWithItsSign) {
    EXPECT_EQ(RowWithSpace(L"-1,2048"), L"Shelf" + Space(0, 2048));
    EXPECT_EQ(RowWithSpace(L"-5,-7"), L"Shelf" + Space(0, -7));
    EXPECT_NE(RowWithSpace(L"1,-2048").find(L" -"), std::wstring::npos);
    EXPECT_EQ(RowWithSpace(L"-9223372036854775808,9223372036854775807"),
              L"Shelf" + Space(0, std::numeric_limits<std::int64_t>::max()));
}

TEST_F(ChooserRows, ShowUnknownSpaceWhenADeadAccountLeavesTheValuesAlone) {
    OneProvider(L"Ann|ann", false); // the fake answers no and writes nothing
    EXPECT_EQ(RowsShown(), Lines{std::wstring(L"Shelf") + kUnknown});
}

TEST_F(ChooserRows, GoByTheValuesAlsoWhenTheProviderReportsAFailure) {
    EXPECT_EQ(RowWithSpace(L"1024,2048,0"), L"Shelf" + Space(1024, 2048));
    EXPECT_EQ(RowWithSpace(L"-2,-2,0"), std::wstring(L"Shelf") + kUnknown);
}

TEST_F(ChooserRows, CutANameAndALabelTo50CharactersBeforeTheSpace) {
    const std::wstring name(60, L'n');
    OneProvider(L"Ann|ann");
    Answer(L"provider7.GetDisplayName", name);
    EXPECT_EQ(RowsShown(), Lines{name.substr(0, 50) + kUnknown});
    const std::wstring label(50, L'm');
    Answer(L"provider7.GetAccountProfiles", label + L"|ann;Bob|bob");
    EXPECT_EQ(RowsShown()[0], label + kUnknown);
}

TEST_F(ChooserRows, EndNamesAndLabelsWithTheirBuffersWhenTheyHaveNoNul) {
    const std::wstring name(128, L'n');
    OneProvider(L"0");
    Answer(L"provider7.GetDisplayName", name + L"more");
    Answer(L"provider7.GetDisplayName.noNul", L"1");
    EXPECT_EQ(RowsShown(), Lines{name});
    Answer(L"provider7.GetAccountProfiles", std::wstring(51, L'm') + L"|ann;Bob|bob");
    Answer(L"provider7.GetAccountProfiles.noNul", L"1");
    EXPECT_EQ(RowsShown(),
              (Lines{std::wstring(50, L'm') + kUnknown, std::wstring(L"Bob") + kUnknown}));
}

TEST_F(ChooserRows, CutNoCharacterOfTwoUnitsInHalf) {
    OneProvider(L"Ann|ann");
    Answer(L"provider7.GetDisplayName", std::wstring(49, L'n') + L"\xD83D\xDE00");
    EXPECT_EQ(RowsShown(), Lines{std::wstring(49, L'n') + kUnknown});
}

TEST_F(ChooserRows, ShowTheWholeNameOfAProviderWithoutAnAccount) {
    const std::wstring name(127, L'n');
    OneProvider(L"0");
    Answer(L"provider7.GetDisplayName", name);
    EXPECT_EQ(RowsShown(), Lines{name});
}

TEST_F(ChooserRows, KeepPercentSignsOfNames) {
    OneProvider(L"100%s|ann;%n|bob");
    EXPECT_EQ(RowsShown(),
              (Lines{std::wstring(L"100%s") + kUnknown, std::wstring(L"%n") + kUnknown}));
}

} // namespace

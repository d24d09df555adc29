#include "OBCore/modules/ResourceModule.h"

#include "OBCore/modules/OwnModule.h"
#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

namespace {

using obcore::BindResourceModule;
using obcore::FreeResourceModule;
using obcore::LoadText;

constexpr obcore::TextId kPresentText = obcore::TextId::ChoiceZip;
constexpr obcore::TextId kAbsentText{64000};

struct LoadCall {
    std::wstring path;
    HANDLE file;
    DWORD flags;
};
std::vector<LoadCall> loadCalls;
bool refusesLoads;
decltype(&LoadLibraryExW) realLoadEx;

HMODULE WINAPI RecordLoadEx(LPCWSTR path, HANDLE file, DWORD flags) {
    loadCalls.push_back({path, file, flags});
    return refusesLoads ? nullptr : realLoadEx(path, file, flags);
}

class ResourceModuleBinding : public BindingFixture {
protected:
    void SetUp() override {
        BindingFixture::SetUp();
        ASSERT_TRUE(load_.Ok());
        realLoadEx = load_.Real();
        loadCalls.clear();
        refusesLoads = false;
    }
    void TearDown() override {
        FreeResourceModule();
        BindingFixture::TearDown();
    }

private:
    obtest::ImportPatch<decltype(LoadLibraryExW)> load_{"kernel32.dll", "LoadLibraryExW",
                                                        &RecordLoadEx};
};

TEST_F(ResourceModuleBinding, LoadsTheOwnFileAsDataOnce) {
    EXPECT_EQ(nullptr, obcore::ResourceModule());
    EXPECT_TRUE(BindResourceModule());
    EXPECT_TRUE(BindResourceModule());
    ASSERT_EQ(1u, loadCalls.size());
    EXPECT_EQ(obcore::OwnModulePath(), loadCalls[0].path);
    EXPECT_EQ(nullptr, loadCalls[0].file);
    EXPECT_EQ(34u, loadCalls[0].flags);
    EXPECT_NE(nullptr, obcore::ResourceModule());
}

TEST_F(ResourceModuleBinding, ForgetsAFailureAndTriesAgain) {
    refusesLoads = true;
    EXPECT_FALSE(BindResourceModule());
    EXPECT_EQ(nullptr, obcore::ResourceModule());
    refusesLoads = false;
    EXPECT_TRUE(BindResourceModule());
    EXPECT_EQ(2u, loadCalls.size());
}

DWORD WINAPI AnswerCutPath(HMODULE, LPWSTR path, DWORD capacity) {
    path[0] = L'\0';
    return capacity;
}

TEST_F(ResourceModuleBinding, LoadsNothingWhenTheOwnPathIsCut) {
    const obtest::ImportPatch<decltype(GetModuleFileNameW)> patch(
        "kernel32.dll", "GetModuleFileNameW", &AnswerCutPath);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(BindResourceModule());
    EXPECT_TRUE(loadCalls.empty());
}

TEST_F(ResourceModuleBinding, GivesTextsOnlyWhileBound) {
    EXPECT_EQ(L"", LoadText(kPresentText));
    ASSERT_TRUE(BindResourceModule());
    EXPECT_NE(L"", LoadText(kPresentText));
    EXPECT_EQ(L"", LoadText(kAbsentText));
    FreeResourceModule();
    EXPECT_EQ(nullptr, obcore::ResourceModule());
    EXPECT_EQ(L"", LoadText(kPresentText));
    EXPECT_TRUE(BindResourceModule());
    EXPECT_NE(L"", LoadText(kPresentText));
}

TEST_F(ResourceModuleBinding, CutsATextToItsCapacity) {
    ASSERT_TRUE(BindResourceModule());
    const std::wstring whole = LoadText(kPresentText);
    ASSERT_GT(whole.size(), 3u);
    EXPECT_EQ(whole.substr(0, 3), LoadText(kPresentText, 4));
}

std::wstring Filled(std::wstring text, std::wstring_view value) {
    obcore::FillIn(text, L"%ls", value);
    return text;
}

TEST(MessagePlaceholder, TakesTheValueInPlaceOfTheFirstPlaceholder) {
    EXPECT_EQ(Filled(L"%ls of %ls", L"1 GB"), L"1 GB of %ls");
    EXPECT_EQ(Filled(L"can't copy \"%ls\".", L""), L"can't copy \"\".");
    EXPECT_EQ(Filled(L"%ls", L"100 %ls"), L"100 %ls");
}

TEST(MessagePlaceholder, StaysAsItIsWithoutThePlaceholder) {
    EXPECT_EQ(Filled(L"100 %s %d %", L"value"), L"100 %s %d %");
    EXPECT_EQ(Filled(L"", L"value"), L"");
}

} // namespace

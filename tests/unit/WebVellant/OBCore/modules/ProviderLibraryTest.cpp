#include "OBCore/modules/ProviderLibrary.h"
#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

using namespace obcontract; // the contract's tables name its types bare

namespace {

using obcore::FreeProviderManager;
using obcore::LoadProviderManager;

const std::wstring kFileName = L"PVXManager64.dll";

class ProviderManagerLoading : public BindingFixture {
protected:
    void TearDown() override {
        FreeProviderManager();
        DeleteFileW((ProgramFolder() + kFileName).c_str());
        BindingFixture::TearDown();
    }

    static std::wstring Beside() { return ProgramFolder() + kFileName; }
    static bool IsLoaded() { return GetModuleHandleW(kFileName.c_str()) != nullptr; }
};

TEST_F(ProviderManagerLoading, FailsWithoutTheFile) {
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_EQ(std::vector<std::wstring>({Beside()}), Loads());
}

TEST_F(ProviderManagerLoading, ShowsNoBoxOfTheSystemForAFileThatIsNoModule) {
    const UINT before = SetErrorMode(0);
    ASSERT_TRUE(obtest::WriteFileContent(Beside(), "not a module"));
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_EQ(static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX),
              ErrorModeOfLastLoad());
    SetErrorMode(before);
}

TEST_F(ProviderManagerLoading, BindsEveryEntryByItsName) {
    Put(L"providers.dll", Beside());
    ASSERT_TRUE(LoadProviderManager());
    const HMODULE manager = GetModuleHandleW(kFileName.c_str());
    ASSERT_NE(nullptr, manager);
#define EXPECT_BOUND(name, result, arguments)                                                      \
    EXPECT_NE(nullptr, obcore::ProviderManager().name);                                            \
    EXPECT_EQ(reinterpret_cast<void*>(GetProcAddress(manager, #name)),                             \
              reinterpret_cast<void*>(obcore::ProviderManager().name))                             \
        << #name;
    OB_PROVIDER_MANAGER_ENTRIES(EXPECT_BOUND)
#undef EXPECT_BOUND
    EXPECT_TRUE(LoadProviderManager());
    EXPECT_EQ(1u, Loads().size());
}

TEST_F(ProviderManagerLoading, FailsWhenAnEntryIsMissingAndTriesAgain) {
    Put(L"providers_incomplete.dll", Beside());
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_FALSE(IsLoaded());
    ASSERT_EQ(1u, obtest::TraceLines().size());
    EXPECT_TRUE(obtest::TraceLines()[0].starts_with("GetProcAddress ")) << obtest::TraceLines()[0];
    Put(L"providers.dll", Beside());
    EXPECT_TRUE(LoadProviderManager());
}

TEST_F(ProviderManagerLoading, NeverTakesTheModuleFromASearchPath) {
    const std::wstring home = folder_.Folder(L"home");
    LiveIn(home + L"\\own.dll");
    Put(L"providers.dll", Beside());
    EXPECT_FALSE(LoadProviderManager());
    EXPECT_EQ(std::vector<std::wstring>({home + L"\\" + kFileName}), Loads());
}

} // namespace

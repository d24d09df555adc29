// The worker keeps the module of its code loaded until it ends.
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::FakeModules;
using obtest::HeldCall;

constexpr wchar_t kModule[] = L"transforms_module.dll";

TEST(TransformWorkerModule, StaysLoadedUntilTheWorkerEnds) {
    FakeModules::Reset();
    FakeModules::Answer(L"IsProviderSupport.2.4", L"1");
    FakeModules::Answer(L"GetSelectedTransformSummary", L"0,0,1,0");
    FakeModules::Answer(L"Hold", L"ExecuteTransforms");
    const HMODULE module = LoadLibraryW(kModule);
    ASSERT_NE(module, nullptr);
    const auto run = reinterpret_cast<int (*)(HWND)>(
        reinterpret_cast<void*>(GetProcAddress(module, "RunInModule")));
    ASSERT_NE(run, nullptr);
    obtest::TransformUiDriver driver([](HWND dialog) {
        EXPECT_FALSE(HeldCall::Await().empty());
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });

    EXPECT_EQ(run(nullptr), 0);
    EXPECT_TRUE(driver.SawDialog());
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_NE(GetModuleHandleW(kModule), nullptr);

    HeldCall::Release();
    EXPECT_TRUE(obtest::WaitUntil([] { return !GetModuleHandleW(kModule); }));
    // The call that was running is the last one.
    EXPECT_TRUE(FakeModules::CallsOf({L"GetProviderTarget"}).empty());
}

} // namespace

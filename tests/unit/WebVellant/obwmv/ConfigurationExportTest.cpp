// OBConfig: what is bound before the settings open, and what it returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "obwmv/Exports.h"
#include "obwmv/Library.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/FakeModules.h"
#include "tests/unit/WebVellant/obwmv/RequestFakes.h"

namespace {

using obtest::AbsentModule;
using obtest::FakeModules;
using obtest::Fakes;
using testing::ElementsAre;
using testing::IsEmpty;

const HWND kOwner = reinterpret_cast<HWND>(0x1234);

class ConfigurationExport : public testing::Test {
protected:
    void SetUp() override {
        obtest::ResetFakes();
        FakeModules::Reset();
    }
    void TearDown() override { obwmv::OnProcessDetach(); }
};

TEST_F(ConfigurationExport, ShowsTheSettingsInsideTheActivationContext) {
    const obtest::ActivationRecorder activations;
    ASSERT_TRUE(activations.Ok());
    HWND owner = nullptr;
    Fakes().configuration = [&](HWND parent) {
        owner = parent;
        EXPECT_NE(obcore::ResourceModule(), nullptr);
        EXPECT_NE(obcore::ArchiveService().WebHelpW, nullptr);
        EXPECT_NE(obcore::ProviderManager().Init, nullptr);
    };
    EXPECT_TRUE(OBConfig(kOwner));
    EXPECT_EQ(owner, kOwner);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "ShowConfiguration", "deactivate"));
}

TEST_F(ConfigurationExport, AnswersFalseWithoutTheArchiveServiceOrTheProviderManager) {
    for (const wchar_t* const name : {L"obofcsvc64.dll", L"PVXManager64.dll"}) {
        const AbsentModule absent(name);
        ASSERT_TRUE(absent.Ok());
        EXPECT_FALSE(OBConfig(kOwner)) << name;
        obwmv::OnProcessDetach();
    }
    EXPECT_THAT(Fakes().steps, IsEmpty());
}

HMODULE WINAPI LoadNothing(LPCWSTR, HANDLE, DWORD) { return nullptr; }

TEST_F(ConfigurationExport, AnswersFalseWithoutTheTexts) {
    const obtest::ImportPatch<decltype(&LoadLibraryExW)> load("kernel32.dll", "LoadLibraryExW",
                                                              &LoadNothing);
    ASSERT_TRUE(load.Ok());
    EXPECT_FALSE(OBConfig(kOwner));
    EXPECT_THAT(Fakes().steps, IsEmpty());
}

TEST_F(ConfigurationExport, AnswersFalseWhenTheContextCantBeActivated) {
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    EXPECT_FALSE(OBConfig(kOwner));
    EXPECT_THAT(Fakes().steps, ElementsAre("activate"));
}

TEST_F(ConfigurationExport, AnswersTrueAndLeavesTheContextWhenTheSettingsThrow) {
    const obtest::ActivationRecorder activations;
    ASSERT_TRUE(activations.Ok());
    Fakes().configuration = [](HWND) { throw std::bad_alloc(); };
    EXPECT_TRUE(OBConfig(kOwner));
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "ShowConfiguration", "deactivate"));
}

} // namespace

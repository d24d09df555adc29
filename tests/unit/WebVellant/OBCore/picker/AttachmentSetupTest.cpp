#include "OBCore/picker/AttachmentSetup.h"

#include <memory>
#include <stdexcept>

#include "OBCore/modules/ProviderLibrary.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::ProviderManagerEntries;
using obcontract::ProviderManagerHandle;
using namespace obcore;
using namespace obtest;

// The thread had German before the run.
BOOL WINAPI GermanBefore(DWORD flags, PULONG count, PZZWSTR languages, PULONG capacity) {
    RecordCall(L"GetThreadPreferredUILanguages(" + std::to_wstring(flags) + L", " +
               std::to_wstring(*capacity) + L")");
    *count = 1;
    wcscpy(languages, L"0407");
    return TRUE;
}

BOOL WINAPI RecordLanguage(DWORD flags, PCZZWSTR languages, PULONG) {
    RecordCall(L"SetThreadPreferredUILanguages(" + std::to_wstring(flags) + L", " +
               Quoted(languages) + L")");
    return TRUE;
}

struct AttachmentSetupMemory {
    alignas(AttachmentSetup) std::uint8_t bytes[sizeof(AttachmentSetup)];
};

class AttachmentSetupRun : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        ASSERT_TRUE(get.Ok());
        ASSERT_TRUE(set.Ok());
    }

    ImportPatch<decltype(&GetThreadPreferredUILanguages)> get{
        "kernel32.dll", "GetThreadPreferredUILanguages", &GermanBefore};
    ImportPatch<decltype(&SetThreadPreferredUILanguages)> set{
        "kernel32.dll", "SetThreadPreferredUILanguages", &RecordLanguage};
};

TEST_F(AttachmentSetupRun, InitialisesTheManagerThenLoadsThenSetsTheLanguage) {
    {
        AttachmentSetup setup(nullptr, false);
        RecordCall(L"run");
    }
    ExpectOrder({
        L"CreateObExtensionsManager()",
        // The user's hive is passed as a signed number.
        L"Init(manager, -2147483647, \"Software\\Tavi Ren Computing\\Ombrix\\PVX\")",
        L"AllowedEncryptMethods()",
        L"GetThreadPreferredUILanguages(68, 10)",
        L"SetThreadPreferredUILanguages(4, ",
        L"run",
        L"SetThreadPreferredUILanguages(4, \"0407\")",
        L"DeleteObExtensionsManager(manager)",
    });
    EXPECT_EQ(FakeModules::CallsOf({L"DeleteObExtensionsManager", L"Deinit"}).size(), 1U);
}

TEST_F(AttachmentSetupRun, StartsTheRecordOfTheRun) {
    const HWND owner = GetDesktopWindow();
    for (const bool blocked : {true, false}) {
        AttachmentSetup setup(owner, blocked);
        const OBAttachJob& job = setup.Job();
        EXPECT_EQ(job.UploadBlocked, blocked);
        EXPECT_EQ(job.ParentWindow, owner);
        EXPECT_NE(job.OwnedProviderManager, nullptr);
        EXPECT_EQ(job.ProviderManager, job.OwnedProviderManager);
        EXPECT_TRUE(job.NameWithoutArchive);
        EXPECT_FALSE(job.ResultIsArchive);
        EXPECT_TRUE(job.SingleAttachConversion); // the loader's default, so it was loaded
    }
}

TEST_F(AttachmentSetupRun, SetsTheLanguageThatWasLoaded) {
    SetValue(HKEY_LOCAL_MACHINE, kLangsKey, L"InstalledUILangID", L"1036");
    AttachmentSetup setup(nullptr, false);
    EXPECT_EQ(FakeModules::CallsOf({L"SetThreadPreferredUILanguages"}),
              Calls{L"SetThreadPreferredUILanguages(4, \"040c\")"});
}

TEST_F(AttachmentSetupRun, ClearsTheLanguageWhenNoneIsSet) {
    AttachmentSetup setup(nullptr, false);
    EXPECT_EQ(FakeModules::CallsOf({L"SetThreadPreferredUILanguages"}),
              Calls{L"SetThreadPreferredUILanguages(4, \"\")"});
}

// The setup that is being made while the manager's Init looks at it.
AttachmentSetup* setupInTheMaking = nullptr;

TEST_F(AttachmentSetupRun, KnowsThatUploadsAreBlockedBeforeTheManagerIsInitialised) {
    const ProviderManagerEntries saved = ProviderManager();
    auto& entries = const_cast<ProviderManagerEntries&>(ProviderManager());
    entries.Init = [](ProviderManagerHandle, std::int64_t, const wchar_t*) {
        RecordCall(setupInTheMaking->Job().UploadBlocked ? L"blocked" : L"free");
    };
    const auto memory = std::make_unique<AttachmentSetupMemory>();
    setupInTheMaking = reinterpret_cast<AttachmentSetup*>(memory->bytes);
    for (const bool blocked : {true, false}) {
        std::destroy_at(std::construct_at(setupInTheMaking, nullptr, blocked));
    }
    entries = saved;
    EXPECT_EQ(FakeModules::CallsOf({L"blocked", L"free"}), (Calls{L"blocked", L"free"}));
}

TEST_F(AttachmentSetupRun, PutsEverythingBackWhenAnExceptionPasses) {
    try {
        AttachmentSetup setup(nullptr, false);
        throw std::runtime_error("full");
    } catch (const std::runtime_error&) {
        RecordCall(L"caught");
    }
    ExpectOrder({L"SetThreadPreferredUILanguages(4, \"0407\")",
                 L"DeleteObExtensionsManager(manager)", L"caught"});
}

} // namespace

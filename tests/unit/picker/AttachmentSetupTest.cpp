#include "OBCore/picker/AttachmentSetup.h"

#include <stdexcept>

#include "tests/standins/Recording.h"
#include "tests/support/ImportDouble.h"
#include "tests/support/StandIns.h"
#include "tests/unit/picker/PickerTest.h"

namespace {

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

class AttachmentSetupRun : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        ASSERT_TRUE(get.Stands());
        ASSERT_TRUE(set.Stands());
    }

    ImportDouble<decltype(&GetThreadPreferredUILanguages)> get{
        "kernel32.dll", "GetThreadPreferredUILanguages", &GermanBefore};
    ImportDouble<decltype(&SetThreadPreferredUILanguages)> set{
        "kernel32.dll", "SetThreadPreferredUILanguages", &RecordLanguage};
};

TEST_F(AttachmentSetupRun, InitialisesTheManagerThenLoadsThenSetsTheLanguage) {
    {
        AttachmentSetup setup(nullptr, false);
        RecordCall(L"run");
    }
    ExpectOrder({
        L"CreateObExtensionsManager()",
        // The user's hive goes over as a number with its sign.
        L"Init(manager, -2147483647, \"Software\\Tavi Ren Computing\\Ombrix\\PVX\")",
        L"AllowedEncryptMethods()",
        L"GetThreadPreferredUILanguages(68, 10)",
        L"SetThreadPreferredUILanguages(4, ",
        L"run",
        L"SetThreadPreferredUILanguages(4, \"0407\")",
        L"DeleteObExtensionsManager(manager)",
    });
    EXPECT_EQ(StandIns::CallsOf({L"DeleteObExtensionsManager", L"Deinit"}).size(), 1U);
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

// The real service's exports besides the zip: rules, record, help and update. The product's library
// is beside it, with the texts that both share.
#include <windows.h>

#include <bcrypt.h>
#include <gtest/gtest.h>
#include <shellapi.h>
#include <shlobj.h>

#include <vector>

#include "ObLib/Src/Win32/ComResources.h"
#include "tests/contract/archive/LoadedService.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

namespace {

using obtest::SetMachinePolicy;

std::wstring BesideProgram(const std::wstring& name) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

class ArchiveEntries : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(service_.IsComplete());
        obtest::ClearProductRegistry();
    }
    void TearDown() override { obtest::ClearProductRegistry(); }

    std::wstring OnlyBox() const {
        const auto seen = boxes_.Seen();
        EXPECT_EQ(seen.size(), 1U);
        if (seen.size() != 1) return {};
        EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
        return seen[0].text;
    }

    obtest::LoadedService service_;
    // Created after the module is loaded: enumerating windows for the first time during a load can
    // deadlock in the test system's loader.
    obtest::MessageBoxWatcher boxes_;
};

TEST_F(ArchiveEntries, EncryptionThatIsSwitchedOffIsShownAndReturned) {
    SetMachinePolicy(L"NoEncryption", L"1");
    EXPECT_EQ(service_->AllowedEncryptMethods(), 12);
    EXPECT_TRUE(boxes_.Seen().empty());
    EXPECT_EQ(service_->TryToShowWarningOrErrorMessage(nullptr, 0, 1) & 0xFFFF, 2U);
    EXPECT_EQ(OnlyBox(), L"The Ombrix encryption feature has been disabled by your administrator.");
}

TEST_F(ArchiveEntries, AnEmptyMaskIsShownAndReturnedLikeEncryptionThatIsOff) {
    SetMachinePolicy(L"AllowedEncryptionMethods", L"0");
    EXPECT_EQ(service_->AllowedEncryptMethods(), 0);
    EXPECT_EQ(service_->DefaultEncryptionMethod(), 0);
    EXPECT_EQ(service_->TryToShowWarningOrErrorMessage(nullptr, 0, 1) & 0xFFFF, 2U);
    EXPECT_EQ(OnlyBox(), L"The Ombrix encryption feature has been disabled by your administrator.");
}

TEST_F(ArchiveEntries, TheMaskAndTheDefaultComeFromThePolicy) {
    SetMachinePolicy(L"DefaultEncryptionMethod", L"4");
    EXPECT_EQ(service_->AllowedEncryptMethods(), 12);
    EXPECT_EQ(service_->DefaultEncryptionMethod(), 4);
    SetMachinePolicy(L"AllowedEncryptionMethods", L"8");
    EXPECT_EQ(service_->AllowedEncryptMethods(), 8);
    EXPECT_EQ(service_->DefaultEncryptionMethod(), 8);
    EXPECT_EQ(service_->TryToShowWarningOrErrorMessage(nullptr, 0, 1) & 0xFFFF, 0U);
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(ArchiveEntries, TheFipsPolicyIsReturned) {
    SetMachinePolicy(L"FipsMode", L"1");
    EXPECT_EQ(service_->GetOmbrixFIPSSetting() & 0xFFFF, 1U);
}

// The folder of this user's record, in the test's own prefix.
std::wstring MakersFolder() {
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, path.Put());
    return SUCCEEDED(result) ? std::wstring(path.Get()) + L"\\Tavi Ren Computing" : std::wstring();
}

// The lines of the record without their times.
std::vector<std::string> RecordedEvents() {
    constexpr std::size_t kTime = 21; // with its tab
    const auto text = obtest::ReadFileContent(MakersFolder() + L"\\Ombrix\\usage.txt").value_or("");
    std::vector<std::string> events;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        if (end == std::string::npos || end - at < kTime) return {"a broken line"};
        events.push_back(text.substr(at + kTime, end - at - kTime));
        at = end + 2;
    }
    return events;
}

TEST_F(ArchiveEntries, StartFeaturesAndEndAreRecordedUnlessThePolicyForbidsIt) {
    ASSERT_FALSE(MakersFolder().empty());
    obtest::RemoveTree(MakersFolder());
    const auto useAll = [this] {
        service_->LogLaunch();
        service_->LogAppletFeature(L"feature.cloud", L"cloud.name=Depot");
        service_->LogExit();
    };
    SetMachinePolicy(L"NoUsageRecord", L"1");
    useAll();
    EXPECT_FALSE(obtest::FileExists(MakersFolder()));
    SetMachinePolicy(L"NoUsageRecord", L"0");
    useAll();
    const std::string process = "\tprocess=" + std::to_string(GetCurrentProcessId());
    EXPECT_EQ(RecordedEvents(),
              (std::vector<std::string>{"launch" + process, "feature.cloud\tcloud.name=Depot",
                                        "exit" + process}));
    EXPECT_TRUE(boxes_.Seen().empty());
}

// The paths that the service gave to the shell. The fake shell opens nothing.
std::vector<std::wstring> opened;
HINSTANCE WINAPI NoteOpened(HWND, const wchar_t*, const wchar_t* file, const wchar_t*,
                            const wchar_t*, int) {
    opened.push_back(file);
    return reinterpret_cast<HINSTANCE>(INT_PTR{42});
}

TEST_F(ArchiveEntries, HelpOpensThePageBesideTheModule) {
    const obtest::ImportPatch<decltype(&ShellExecuteW)> shell("shell32.dll", "ShellExecuteW",
                                                              &NoteOpened, service_.Module());
    ASSERT_TRUE(shell.Ok());
    opened.clear();
    service_->WebHelpW(nullptr, L"Help About Topic", L"Help About Topic");
    const std::wstring page = BesideProgram(L"help\\index.html");
    EXPECT_EQ(opened, std::vector<std::wstring>{page});
    EXPECT_TRUE(boxes_.Seen().empty());
    const std::string text = obtest::ReadFileContent(page).value_or("");
    EXPECT_EQ(text.rfind("<!DOCTYPE html>", 0), 0U);
    // The page loads nothing from elsewhere.
    for (const char* outside : {"http:", "https:", "src=", "<script", "@import", "url("}) {
        EXPECT_EQ(text.find(outside), std::string::npos) << outside;
    }
}

TEST_F(ArchiveEntries, TheUpdateEntryShowsTheInstalledVersion) {
    service_->CheckForUpdates_VB(nullptr, 1);
    EXPECT_EQ(OnlyBox(), L"Version 1.0.0.0 is installed.\n\nNew versions come from whoever "
                         L"installed this one.");
}

// The number of digests computed; a zip without encryption computes them for duplicates only.
int digests;
decltype(&BCryptFinishHash) realFinish;
NTSTATUS WINAPI CountDigest(BCRYPT_HASH_HANDLE hash, PUCHAR output, ULONG size, ULONG flags) {
    ++digests;
    return realFinish(hash, output, size, flags);
}

TEST_F(ArchiveEntries, DuplicatesAreSearchedOnlyWhenAsked) {
    const obtest::ImportPatch<decltype(&BCryptFinishHash)> finish("bcrypt.dll", "BCryptFinishHash",
                                                                  &CountDigest, service_.Module());
    ASSERT_TRUE(finish.Ok());
    realFinish = finish.Real();
    const obtest::TestFolder folder;
    for (const std::uint8_t asked : {std::uint8_t{0}, std::uint8_t{1}}) {
        digests = 0;
        const obcontract::ZipContext context = service_->CreateZipContext();
        for (const wchar_t* name : {L"one.txt", L"two.txt"}) {
            service_->AddFileW(context, folder.File(name, "the same").c_str());
        }
        service_->SetZipNameW(context, (folder / (asked ? L"1.zip" : L"0.zip")).c_str());
        service_->SetDuplicateReferences(context, asked);
        EXPECT_EQ(service_->Zip(nullptr, context), 0U);
        service_->DestroyZipContext(context);
        EXPECT_EQ(digests != 0, asked != 0) << int{asked};
    }
}

} // namespace

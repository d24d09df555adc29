// Registry values that the product would never write. The request is served all the same.
#include "tests/faults/HostRole.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

using Contents = std::map<std::string, std::string>;

// Every value that the product reads, except the two that choose between zip and encryption.
const wchar_t* const kPolicies[] = {
    L"AlwaysEncrypt",     L"AdminSendItem",         L"DisableMsgEditZipOption",
    L"NoEncryption",      L"DisableCloudServices",  L"NoUpdateChecking",
    L"DisableWebVellant", L"DISABLEFILEEXPIRATION", L"EntX509Certificate",
};
const wchar_t* const kUserValues[] = {
    L"UseAltExt",        L"SingleAttachFileName", L"SingleAttachConversion",
    L"EncryptionMethod", L"CompressionMethod",    L"DuplicateReferences",
    L"NameAppend",       L"DefaultZipName",       L"AltExt",
    L"ExcludedExt",      L"ExpireFiles",          L"S4DelExpireDays",
    L"AutoConvertPDF",   L"AutoResizeImages",     L"AutoWatermark",
    L"AutoCombinePDFs",  L"AutoConvertPhotos",    L"AutoRemoveInfo",
    L"AutoSignPDFs",     L"AutoConvertFromPDF",
};
const wchar_t* const kCloudValues[] = {L"SendSetting", L"MinimumSize", L"ServiceId"};

struct Form {
    DWORD type;
    std::string bytes;
};

class RegistryFaults : public HostRole {
protected:
    void SetUp() override {
        HostRole::SetUp();
        one_ = sources_.File(L"one.txt", "first");
        two_ = sources_.File(L"two.txt", "second");
    }

    // The same bytes under every name, for the user and for the machine in these views.
    static void Plant(const Form& form, const std::vector<int>& views) {
        const auto size = static_cast<DWORD>(form.bytes.size());
        for (const wchar_t* name : kUserValues)
            SetRawValue(HKEY_CURRENT_USER, kUserKey, name, form.type, form.bytes.data(), size);
        for (const wchar_t* name : kCloudValues)
            SetRawValue(HKEY_CURRENT_USER, kQuilletKey, name, form.type, form.bytes.data(), size);
        for (const int view : views) {
            for (const wchar_t* name : kPolicies)
                SetRawValue(HKEY_LOCAL_MACHINE, kPolicyKey, name, form.type, form.bytes.data(),
                            size, view);
            SetRawValue(HKEY_LOCAL_MACHINE, kLangsKey, L"", form.type, form.bytes.data(), size,
                        view);
        }
        SetUserValue(L"AutoEncrypt", L"0");
        ChooseZip();
    }

    void ExpectServed(const Form& form, const std::vector<int>& views = {32, 64}) {
        ClearProductRegistry();
        Plant(form, views);
        const Answer answer = Open({one_, two_});
        EXPECT_EQ(answer.result, 1);
        EXPECT_EQ(ZipOf(answer), (Contents{{"one.txt", "first"}, {"two.txt", "second"}}));
        ExpectOnlyTheZipIsLeft(answer);
        EXPECT_TRUE(boxes_.Seen().empty());
        RemoveTree(
            answer.cleanupFolder.substr(0, answer.cleanupFolder.find_last_not_of(L'\\') + 1));
    }

    std::wstring one_;
    std::wstring two_;
};

std::string Bytes(const std::wstring& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

TEST_F(RegistryFaults, OfTheWrongTypeDontStopTheRequest) {
    const std::string number("\xFE\xFF\xFF\x7F", 4);
    constexpr DWORD unknown = 12345;
    for (const DWORD type :
         {DWORD{REG_DWORD}, DWORD{REG_BINARY}, DWORD{REG_QWORD}, DWORD{REG_NONE}, unknown})
        ExpectServed({type, number});
}

TEST_F(RegistryFaults, WithoutATerminatorDontStopTheRequest) {
    ExpectServed({REG_SZ, Bytes(L"value")});
    ExpectServed({REG_SZ, Bytes(L"7") + "x"}); // and half a unit after it
    ExpectServed({REG_MULTI_SZ, Bytes(L"value")});
    ExpectServed({REG_EXPAND_SZ, Bytes(L"%TEMP%\\..")});
}

TEST_F(RegistryFaults, ThatAreEmptyDontStopTheRequest) {
    ExpectServed({REG_SZ, ""});
    ExpectServed({REG_SZ, std::string(2, '\0')});
    ExpectServed({REG_SZ, "x"});
    ExpectServed({REG_BINARY, ""});
}

TEST_F(RegistryFaults, ThatAreHugeDontStopTheRequest) {
    for (const std::size_t units : {260u, 4096u, 70000u})
        ExpectServed({REG_SZ, Bytes(std::wstring(units, L'9'))});
    ExpectServed({REG_BINARY, std::string(1000001, '\xFF')});
}

TEST_F(RegistryFaults, ThatAreNumbersBeyondTheirFieldsDontStopTheRequest) {
    // The last one is read as 9. As 1 it would ask for a cloud account, which is no fault.
    for (const wchar_t* number : {L"-1", L"4294967295", L"4294967296", L"-2147483649", L"9e1"})
        ExpectServed({REG_SZ, Bytes(std::wstring(number) + L'\0')});
}

// A 32-bit installer writes to the 32-bit view only, a 64-bit one to the other.
TEST_F(RegistryFaults, ThatAreInOneRegistryViewOnlyDontStopTheRequest) {
    const std::string number("\xFE\xFF\xFF\x7F", 4);
    for (const int view : {32, 64}) {
        ExpectServed({REG_DWORD, number}, {view});
        ExpectServed({REG_SZ, Bytes(L"value")}, {view});
        ExpectServed({REG_SZ, ""}, {view});
        ExpectServed({REG_SZ, Bytes(std::wstring(70000, L'9'))}, {view});
    }
}

// A name from the registry is used as a name and never leads out of the run's folder.
TEST_F(RegistryFaults, ThatNameTheZipNeverLeadOutOfItsFolder) {
    for (const wchar_t* name :
         {L"..\\..\\out", L"..out", L"...out", L"C:\\out", L"\\\\server\\out", L"out:stream",
          L"out\\", L"a/b", L"CON", L"out\n", L"*?", L"..", L" "}) {
        SetUserValue(L"DefaultZipName", name);
        const Answer answer = Open({one_, two_});
        EXPECT_EQ(ZipOf(answer).size(), 2u) << Utf8(name);
        ExpectOnlyTheZipIsLeft(answer);
        RemoveTree(
            answer.cleanupFolder.substr(0, answer.cleanupFolder.find_last_not_of(L'\\') + 1));
    }
}

// Anything that isn't a plain "no" asks for a password: the safe side.
TEST_F(RegistryFaults, ThatLeaveEncryptionInDoubtAskForAPassword) {
    const std::string odd("\x31\x00\x00\x00", 4);
    SetRawValue(HKEY_CURRENT_USER, kUserKey, L"AutoEncrypt", REG_DWORD, odd.data(), 4);
    std::thread driver([] {
        const OpenPasswordPrompt prompt = OpenPasswordPrompt::Await(GetCurrentProcessId());
        EXPECT_TRUE(prompt.Window()) << "no prompt";
        prompt.PressCancel();
        EXPECT_TRUE(prompt.WaitUntilClosed());
    });
    const Answer answer = Open({one_, two_});
    driver.join();
    ExpectNothingGiven(answer);
    EXPECT_EQ(Left(), Texts{});
}

} // namespace
} // namespace obtest

// Attachment settings that a user makes in the product's own dialogs, and the requests after them.
// Library, settings program, host, archive service, provider manager and shell dialog are real.
#include "OBCore/settings/AttachmentDialogIds.h"
#include "OBCore/settings/EncryptionDialogIds.h"
#include "OBCore/settings/OptionsDialogIds.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/e2e/RealRequest.h"
#include "tests/e2e/ZipContents.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

constexpr std::uint16_t kAes256 = 0x0103;

// A window of the settings program.
struct Page {
    HWND Item(int id) const { return GetDlgItem(window, id); }
    bool IsChecked(int id) const {
        return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    // A click on a radio or box that isn't checked.
    void Check(int id) const {
        EXPECT_TRUE(Click(Item(id)));
        EXPECT_TRUE(WaitUntil([&] { return IsChecked(id); })) << id;
    }
    void Close() const {
        PressCommand(window, IDOK);
        EXPECT_TRUE(WaitUntilClosed(window));
    }

    HWND window;
};

class SettingsEndToEnd : public RealRequest {
protected:
    void SetUp() override {
        ClearProductRegistry();
        RealRequest::SetUp();
    }

    // Opens the settings, lets `use` change the attachment settings, and closes all by OK.
    void Change(const std::function<void(const Page&)>& use) {
        StartProgram();
        const Page settings = Await(OB_OPTIONS_ATTACHMENT);
        Click(settings.Item(OB_OPTIONS_ATTACHMENT));
        const Page attachments = Await(OB_ATTACHMENT_PREVIEW);
        use(attachments);
        attachments.Close();
        PressCommand(settings.window, OB_OPTIONS_OK);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(program_.Get(), kUiLimit));
    }
    // The visible window of the program that has the control `id`.
    Page Await(int id) const {
        const HWND window = WaitForTopWindow(
            [id](HWND each) { return IsDialog(each) && GetDlgItem(each, id) != nullptr; },
            GetProcessId(program_.Get()));
        EXPECT_NE(nullptr, window);
        return {window};
    }
    // The dialog that a window of the program has opened.
    Page AwaitDialogOf(const Page& owner) const {
        const HWND window = WaitForTopWindow(
            [&](HWND each) { return IsDialog(each) && GetWindow(each, GW_OWNER) == owner.window; },
            GetProcessId(program_.Get()));
        EXPECT_NE(nullptr, window);
        return {window};
    }
    // Makes a request; the picker must open with this choice. Returns the path that the page gets.
    std::wstring PathOf(Choice atFirst, const Use& use) {
        PickerUiDriver driver([&](OpenPicker& picker) {
            const std::wstring text = Text(static_cast<UINT>(atFirst));
            EXPECT_TRUE(WaitUntil([&] { return picker.IsChecked(text); }));
            use(picker);
        });
        const OpenAnswer answer = AskOpen();
        EXPECT_TRUE(driver.Done());
        return answer.given.size() == 1 ? answer.given.front() : L"";
    }
    std::vector<std::wstring> TwoFiles() {
        return {files_.File(L"one.txt", "one"), files_.File(L"two.txt", "two")};
    }

private:
    void StartProgram() {
        const auto path = ObLib::PathBesideModule(nullptr, L"settings.exe");
        ASSERT_TRUE(path);
        std::wstring command = L"settings.exe";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        ASSERT_TRUE(CreateProcessW(path->c_str(), command.data(), nullptr, nullptr, FALSE, 0,
                                   nullptr, nullptr, &startup, &started));
        CloseHandle(started.hThread);
        program_.Reset(started.hProcess);
    }

    ObLib::UniqueKernelHandle program_;
};

TEST_F(SettingsEndToEnd, NameTheZipOfARequest) {
    Change([](const Page& page) {
        SetText(page.Item(OB_ATTACHMENT_ZIP_NAME), L" Holiday & more. ");
        page.Check(OB_ATTACHMENT_USE_EXTENSION);
        SetText(page.Item(OB_ATTACHMENT_EXTENSION), L"piz");
    });
    const std::wstring zip = PathOf(Choice::Zip, Pick(Choice::Zip, TwoFiles()));
    EXPECT_EQ(L"Holiday & more.piz", NameOf(zip));
    EXPECT_EQ("two", ReadZip(zip).at("two.txt").content);
}

TEST_F(SettingsEndToEnd, ChooseTheKindOfZipOfASingleFile) {
    Change([](const Page& page) {
        page.Check(OB_ATTACHMENT_ZIPX);
        Click(page.Item(OB_ATTACHMENT_SINGLE_NAME));
        EXPECT_TRUE(WaitUntil([&] { return !page.IsChecked(OB_ATTACHMENT_SINGLE_NAME); }));
    });
    const std::wstring file = files_.File(L"one.txt", "one");
    const std::wstring zip = PathOf(Choice::Zip, Pick(Choice::Zip, {file}));
    EXPECT_EQ(L"Ombrix Compressed Attachments.zipx", NameOf(zip));
}

TEST_F(SettingsEndToEnd, EncryptByTheChosenMethod) {
    Change([this](const Page& page) {
        page.Check(OB_ATTACHMENT_SEND_ENCRYPTED);
        Click(page.Item(OB_ATTACHMENT_ENCRYPTION));
        const Page encryption = AwaitDialogOf(page);
        encryption.Check(OB_ENCRYPTION_METHOD_8);
        encryption.Close();
    });
    const std::wstring zip = PathOf(Choice::Encrypt, PickAndEncrypt(TwoFiles(), L"Gr\u00fcn 5!"));
    const auto entries = ReadZip(zip, "Gr\xC3\xBCn 5!");
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(kAes256, entries.at("one.txt").encryption);
}

TEST_F(SettingsEndToEnd, AttachFilesAsTheyAre) {
    Change([](const Page& page) { page.Check(OB_ATTACHMENT_SEND_PLAIN); });
    const std::wstring file = files_.File(L"one.txt", "one");
    EXPECT_EQ(file, PathOf(Choice::None, Pick(Choice::None, {file})));
}

} // namespace
} // namespace obtest

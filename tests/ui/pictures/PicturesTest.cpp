// What a user sees of a request isn't blank and grows with the screen's scale. With OB_PICTURES, a
// folder, the pictures are stored there to be looked at.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "contracts/ProviderManager.h"
#include "demo/mailpage/MailWindow.h"
#include "services/providers/AccountStore.h"
#include "services/providers/folder/FolderAccount.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/storage/RecordTexts.h"
#include "tests/e2e/CloudRequest.h"
#include "tests/e2e/RealRequest.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/PictureSuite.h"

namespace obtest {
namespace {

// Well above the number of a window whose contents were never painted.
constexpr std::size_t kLeastColours = 12;
constexpr DWORD kPageLimit = 30000; // milliseconds

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

class Pictures : public RealRequest {
protected:
    static void SetUpTestSuite() { BeAwareOfTheScale(); }

    void SetUp() override {
        RealRequest::SetUp();
        ASSERT_EQ(ScreenDpi(), ExpectedDpi());
    }

    // Expects a picture of at least this size at 96 dpi, scaled to the screen's.
    static void Look(HWND window, const std::wstring& name, int leastWidth, int leastHeight) {
        const auto picture = TakeSettledPicture(window, kLeastColours);
        ASSERT_TRUE(picture) << Utf8(name) << " stays blank or keeps changing";
        KeepPicture(*picture, name, leastWidth, leastHeight);
    }
};

// The button that picks from the cloud, and the logo in the bottom strip. What a picture shows of
// the windows around them is the tests' own under Wine.
void ExpectButtonAndLogo(HWND picker) {
    std::puts("[   NOTE   ] the dialog's file name box and view of Windows' classes are the tests' "
              "own under Wine");
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(picker, 3011)));
    EXPECT_TRUE(FindDescendant(picker, [](HWND child) {
        return IsWindowVisible(child) && ClassOf(child) == L"Static" &&
               (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_BITMAP;
    }));
}

// Typing a folder and pressing Open shows it; the shell fills the list some time later.
void OpenFolder(const OpenPicker& picker, const std::wstring& folder, int files) {
    ASSERT_NE(picker.RowCount(), files) << "the folder before has as many files";
    EXPECT_TRUE(picker.TypeNames(folder));
    picker.PressOk();
    EXPECT_TRUE(WaitUntil([&] { return picker.RowCount() == files; }));
}

TEST_F(Pictures, ThePickerShowsItsChoices) {
    const std::wstring folder = files_.Folder(L"Thursday");
    constexpr const wchar_t* kNames[] = {L"Agenda.txt", L"Chart.png",  L"Meeting notes.txt",
                                         L"Plan.txt",   L"Report.pdf", L"Summary.txt"};
    for (const wchar_t* name : kNames) WriteFileContent(folder + L"\\" + name, "content");
    PickerUiDriver driver([&](OpenPicker& picker) {
        OpenFolder(picker, folder, static_cast<int>(std::size(kNames)));
        EXPECT_TRUE(picker.SelectInList({0, 2}));
        ExpectButtonAndLogo(picker.Window());
        Look(picker.Window(), L"picker", 500, 400);
        picker.PressCancel();
    });
    AskOpen();
    EXPECT_TRUE(driver.Done());
}

TEST_F(Pictures, ThePasswordPromptShowsItsFields) {
    const std::wstring file = files_.File(L"Meeting notes.txt");
    PickerUiDriver driver([&](OpenPicker& picker) {
        Pick(Choice::Encrypt, {file})(picker);
        const OpenPasswordPrompt prompt = OpenPasswordPrompt::Await();
        ASSERT_TRUE(prompt.Window());
        EXPECT_TRUE(prompt.Type(L"Abc123!x", L"Abc123"));
        Look(prompt.Window(), L"password", 300, 180);
        prompt.PressCancel();
    });
    AskOpen();
    EXPECT_TRUE(driver.Done());
}

// A mail page that asks once; whoever uses its picker comes after it.
class PageProgram {
public:
    explicit PageProgram(const std::wstring& result) { Start(result); }
    ~PageProgram() {
        if (WaitForSingleObject(process_.Get(), 0) != WAIT_OBJECT_0) {
            TerminateProcess(process_.Get(), 1);
        }
    }
    HWND Window() const { return FindMainWindow(id_); }
    void Close() const {
        PostMessageW(Window(), WM_CLOSE, 0, 0);
        EXPECT_EQ(WaitForSingleObject(process_.Get(), kPageLimit), WAIT_OBJECT_0);
    }

private:
    void Start(const std::wstring& result);

    ObLib::UniqueKernelHandle process_;
    DWORD id_ = 0;
};

void PageProgram::Start(const std::wstring& result) {
    std::wstring command = L"C:\\app\\mailpage.exe --auto --keep-open --no-fallback-dialog "
                           L"--result \"" +
                           result + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &started));
    CloseHandle(started.hThread);
    process_.Reset(started.hProcess);
    id_ = started.dwProcessId;
}

TEST_F(Pictures, TheMailPageShowsTheFilesThatItGot) {
    const std::wstring one = files_.File(L"Meeting notes.txt", std::string(20000, 'n'));
    const std::wstring two = files_.File(L"Chart.png", std::string(3000, 'c'));
    const std::wstring result = files_ / L"answer.txt";
    ShowWindow(Owner(), SW_HIDE); // it would cover the page
    const PageProgram page(result);
    PickerUiDriver driver(Pick(Choice::Zip, {one, two}));
    EXPECT_TRUE(driver.Done());
    EXPECT_TRUE(WaitUntil([&] { return FileExists(result); }, kPageLimit));
    Look(page.Window(), L"mailpage", 600, 400);
    page.Close();
}

// The text of the list's only entry, and the mail's.
void ExpectLinkInMail(HWND page, const std::wstring& link) {
    const HWND list = GetDlgItem(page, mailpage::kAttachmentList);
    std::wstring place(512, L'\0');
    EXPECT_EQ(SendMessageW(list, LB_GETCOUNT, 0, 0), 1);
    place.resize(static_cast<std::size_t>(
        SendMessageW(list, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(place.data()))));
    EXPECT_EQ(place, link);
    const std::wstring mail = ItemText(page, mailpage::kBodyField);
    EXPECT_NE(mail.find(L"large.zip\r\n" + link + L"\r\n"), std::wstring::npos) << mail;
    EXPECT_EQ(mail.find(L'|'), std::wstring::npos) << mail;
    EXPECT_EQ(mail.find(L'#'), std::wstring::npos) << mail;
}

// The path of the one stored file, as a link has it.
std::wstring StoredBelow(const std::wstring& folder) {
    for (std::wstring path : ListTree(folder)) {
        std::ranges::replace(path, L'\\', L'/');
        if (path.ends_with(L"large.zip")) return path;
    }
    ADD_FAILURE() << "nothing was stored";
    return {};
}

TEST_F(Pictures, TheMailPageShowsALinkWithItsSentences) {
    const std::wstring cloud = files_.Folder(L"Our cloud");
    const providers::AccountBook book(HKEY_CURRENT_USER, obcontract::kProviderManagerKey);
    const providers::AccountStore store(HKEY_CURRENT_USER, obcontract::kProviderManagerKey);
    const auto account = providers::AddFolder(book, {cloud, L"https://files.example.com/{path}"});
    ASSERT_TRUE(account);
    ASSERT_TRUE(
        store.SaveDefaultProfile(providers::ProfileOf(providers::kNetworkFolderId, *account)));
    const std::wstring file = files_.File(L"large.bin", LargeContent());
    const std::wstring result = files_ / L"answer.txt";
    ShowWindow(Owner(), SW_HIDE); // it would cover the page
    const PageProgram page(result);
    PickerUiDriver driver(Pick(Choice::Zip, {file}));
    EXPECT_TRUE(driver.Done());
    EXPECT_TRUE(WaitUntil([&] { return FileExists(result); }, kPageLimit));
    ExpectLinkInMail(page.Window(), L"https://files.example.com/" + StoredBelow(cloud));
    EXPECT_EQ(ItemText(page.Window(), mailpage::kStatusLine), Text(160));
    ExpectWholeText(GetDlgItem(page.Window(), mailpage::kStatusLine));
    Look(page.Window(), L"mailpage-link", 600, 400);
    page.Close();
}

} // namespace
} // namespace obtest

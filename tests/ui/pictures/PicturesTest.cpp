// What a user sees of a request isn't blank and grows with the screen's scale. With OB_PICTURES, a
// folder, the pictures are stored there to be looked at.
#include <cstdio>
#include <iterator>

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

TEST_F(Pictures, TheMailPageShowsTheFilesThatItGot) {
    const std::wstring one = files_.File(L"Meeting notes.txt", std::string(20000, 'n'));
    const std::wstring two = files_.File(L"Chart.png", std::string(3000, 'c'));
    const std::wstring result = files_.Path() + L"\\answer.txt";
    std::wstring command = L"C:\\app\\mailpage.exe --auto --keep-open --no-fallback-dialog "
                           L"--result \"" +
                           result + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &started));
    CloseHandle(started.hThread);
    const ObLib::UniqueKernelHandle process(started.hProcess);
    PickerUiDriver driver(Pick(Choice::Zip, {one, two}));
    EXPECT_TRUE(driver.Done());
    EXPECT_TRUE(WaitUntil([&] { return FileExists(result); }, kPageLimit));
    const HWND window = FindMainWindow(started.dwProcessId);
    EXPECT_TRUE(window);
    Look(window, L"mailpage", 600, 400);
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(process.Get(), kPageLimit), WAIT_OBJECT_0);
    if (WaitForSingleObject(process.Get(), 0) != WAIT_OBJECT_0) TerminateProcess(process.Get(), 1);
}

} // namespace
} // namespace obtest

#include <gtest/gtest.h>

#include <cstdio>
#include <thread>

#include "obwmv/ParentWindowAdjuster.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/obwmv/TestWindow.h"

namespace {

using obtest::Icon;
using obtest::MakeWindow;
using obwmv::BrowserWindowFinder;

constexpr DWORD kShown = WS_OVERLAPPEDWINDOW | WS_VISIBLE;

std::string Line(const char* format, unsigned first, int second = 0, unsigned third = 0) {
    char line[128];
    std::snprintf(line, sizeof(line), format, first, second, third);
    return line;
}

unsigned Value(HWND window) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(window));
}

class BrowserWindowFinderTest : public testing::Test {
protected:
    void SetUp() override { obtest::ForgetTrace(); }

    ObLib::UniqueWindow asking_ = MakeWindow(L"AskingWindow", Icon::None, kShown);
    HWND owner_ = asking_.Get();
};

TEST_F(BrowserWindowFinderTest, ReplacesAVisibleOwnerAndRestoresIt) {
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const wchar_t* names[] = {L"MainWindow"};
    {
        const BrowserWindowFinder finder(&owner_, names, 1);
        EXPECT_EQ(owner_, main.Get());
    }
    EXPECT_EQ(owner_, asking_.Get());
}

TEST_F(BrowserWindowFinderTest, ReplacesANullOwnerAndMakesItNullAgain) {
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const wchar_t* names[] = {L"MainWindow"};
    owner_ = nullptr;
    {
        const BrowserWindowFinder finder(&owner_, names, 1);
        EXPECT_EQ(owner_, main.Get());
    }
    EXPECT_EQ(owner_, nullptr);
}

TEST_F(BrowserWindowFinderTest, PassesOverHiddenPopupAndIconlessWindows) {
    // The system walks from the newest window to the oldest.
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const auto hidden = MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW);
    const auto popup = MakeWindow(L"MainWindow", Icon::Application, WS_POPUP | WS_VISIBLE);
    const auto iconless = MakeWindow(L"IconlessWindow", Icon::None, kShown);
    const wchar_t* names[] = {L"IconlessWindow", L"MainWindow"};
    const BrowserWindowFinder finder(&owner_, names, 2);
    EXPECT_EQ(owner_, main.Get());
}

TEST_F(BrowserWindowFinderTest, TakesAnIconWhoseHandleHasOnlyHighBits) {
    // The 32-bit question answers 0 for this class, the pointer-sized one doesn't.
    static constexpr ULONG_PTR kHighIcon = ULONG_PTR{1} << 32;
    const auto main = MakeWindow(L"HighIconWindow", Icon::None, kShown);
    SetClassLongPtrW(main.Get(), GCLP_HICON, static_cast<LONG_PTR>(kHighIcon));
    ASSERT_EQ(GetClassLongW(main.Get(), GCLP_HICON), 0u);
    const wchar_t* names[] = {L"HighIconWindow"};
    const BrowserWindowFinder finder(&owner_, names, 1);
    EXPECT_EQ(owner_, main.Get());
}

TEST_F(BrowserWindowFinderTest, LooksAtEachWindowOfAClassOnce) {
    const auto hidden = MakeWindow(L"MainWindow", Icon::Application, WS_OVERLAPPEDWINDOW);
    const auto popup = MakeWindow(L"MainWindow", Icon::Application, WS_POPUP | WS_VISIBLE);
    const wchar_t* names[] = {L"MainWindow"};
    const BrowserWindowFinder finder(&owner_, names, 1);
    EXPECT_EQ(owner_, asking_.Get());
    EXPECT_EQ(obtest::TraceLines().size(), 4u); // the two ends and two windows
}

TEST_F(BrowserWindowFinderTest, GoesOnToTheNextClassNameWhenOneHasNoWindow) {
    const auto second = MakeWindow(L"SecondWindow", Icon::Application, kShown);
    const wchar_t* names[] = {L"NoSuchClassAnywhere", L"SecondWindow"};
    const BrowserWindowFinder finder(&owner_, names, 2);
    EXPECT_EQ(owner_, second.Get());
}

TEST_F(BrowserWindowFinderTest, PrefersTheEarlierClassName) {
    const auto first = MakeWindow(L"FirstWindow", Icon::Application, kShown);
    const auto second = MakeWindow(L"SecondWindow", Icon::Application, kShown);
    const wchar_t* names[] = {L"FirstWindow", L"SecondWindow"};
    const BrowserWindowFinder finder(&owner_, names, 2);
    EXPECT_EQ(owner_, first.Get());
}

TEST_F(BrowserWindowFinderTest, TakesTheFirstOfSeveralInTheSystemsOrder) {
    const auto below = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const auto above = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const HWND first = FindWindowExW(nullptr, nullptr, L"MainWindow", nullptr);
    ASSERT_TRUE(first == below.Get() || first == above.Get());
    const wchar_t* names[] = {L"MainWindow"};
    const BrowserWindowFinder finder(&owner_, names, 1);
    EXPECT_EQ(owner_, first);
}

TEST_F(BrowserWindowFinderTest, FindsAWindowOfAnotherThread) {
    HWND main = nullptr;
    const ObLib::UniqueKernelHandle made(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const ObLib::UniqueKernelHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread other([&] {
        const auto window = MakeWindow(L"MainWindow", Icon::Application, kShown);
        main = window.Get();
        SetEvent(made.Get());
        WaitForSingleObject(done.Get(), 20000);
    });
    EXPECT_EQ(WaitForSingleObject(made.Get(), 20000), WAIT_OBJECT_0);
    {
        const wchar_t* names[] = {L"MainWindow"};
        const BrowserWindowFinder finder(&owner_, names, 1);
        EXPECT_NE(owner_, asking_.Get());
        EXPECT_EQ(owner_, main);
    }
    SetEvent(done.Get());
    other.join();
}

TEST_F(BrowserWindowFinderTest, SearchesNothingWithACountOfZeroOrLess) {
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    for (const std::int32_t count : {0, -1, INT32_MIN}) {
        const BrowserWindowFinder finder(&owner_, nullptr, count);
        EXPECT_EQ(owner_, asking_.Get());
    }
}

TEST_F(BrowserWindowFinderTest, WritesTheOldValueBackWhateverTheFieldContains) {
    { // the owner changes during the run
        const BrowserWindowFinder finder(&owner_, nullptr, 0);
        owner_ = reinterpret_cast<HWND>(0x1234);
    }
    EXPECT_EQ(owner_, asking_.Get());
}

TEST_F(BrowserWindowFinderTest, RestoresTheOwnerWhenAnExceptionPasses) {
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const wchar_t* names[] = {L"MainWindow"};
    try {
        const BrowserWindowFinder finder(&owner_, names, 1);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(owner_, asking_.Get());
}

TEST_F(BrowserWindowFinderTest, TracesTheSearch) {
    const auto main = MakeWindow(L"MainWindow", Icon::Application, kShown);
    const auto hidden = MakeWindow(L"HiddenWindow", Icon::Application, WS_OVERLAPPEDWINDOW);
    const wchar_t* names[] = {L"HiddenWindow", L"MainWindow"};
    const BrowserWindowFinder finder(&owner_, names, 2);
    const std::vector<std::string> expected = {
        Line("Find Browser Window Init: %x", Value(asking_.Get())),
        Line("Find Browser Window: %x %d %08X", Value(hidden.Get()), 0,
             static_cast<unsigned>(GetWindowLongW(hidden.Get(), GWL_STYLE))),
        Line("Find Browser Window: %x %d %08X", Value(main.Get()), 1,
             static_cast<unsigned>(GetWindowLongW(main.Get(), GWL_STYLE))),
        Line("Find Browser Window Result: %x", Value(main.Get())),
    };
    EXPECT_EQ(obtest::TraceLines(), expected);
}

TEST_F(BrowserWindowFinderTest, TracesTheOwnerAsTheResultWhenNoneWins) {
    const wchar_t* names[] = {L"NoSuchClassAnywhere"};
    const BrowserWindowFinder finder(&owner_, names, 1);
    const std::vector<std::string> expected = {
        Line("Find Browser Window Init: %x", Value(asking_.Get())),
        Line("Find Browser Window Result: %x", Value(asking_.Get())),
    };
    EXPECT_EQ(obtest::TraceLines(), expected);
}

TEST_F(BrowserWindowFinderTest, AssertsThatThereIsAFieldAndRunsOn) {
    obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(obtest::EndsInAccessViolation(
        [] { const BrowserWindowFinder finder(nullptr, nullptr, 0); }));
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].caption, L"Assert Error");
    EXPECT_TRUE(seen[0].hasIcon);
    EXPECT_NE(seen[0].text.find(L"\nExpr: window != NULL\nFile: obwmv\\ParentWindowAdjuster\n"
                                L"Line: 138"),
              std::wstring::npos)
        << seen[0].text.size();
}

} // namespace

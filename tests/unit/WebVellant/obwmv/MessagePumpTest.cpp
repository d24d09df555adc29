#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "obwmv/HostLaunch.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"

namespace {

using obtest::BrowserWindow;
using obtest::QuitValueInQueue;
using obwmv::PumpUntilSignalled;

// An event is signalled in place of the process.
class MessagePump : public testing::Test {
protected:
    void End() { SetEvent(ended.Get()); }
    BrowserWindow browser;
    const ObLib::UniqueKernelHandle ended{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(MessagePump, DispatchesMessagesUntilTheProcessHasEnded) {
    int ticks = 0;
    browser.OnTick([&] {
        if (++ticks == 5) End();
    });
    PumpUntilSignalled(ended.Get());
    EXPECT_GE(ticks, 5);
}

TEST_F(MessagePump, DrainsTheQueueAlsoWhenTheProcessHasEndedAlready) {
    int ticks = 0;
    browser.OnTick([&] { ++ticks; });
    PostMessageW(browser.Root(), WM_TIMER, 1, 0);
    End();
    PumpUntilSignalled(ended.Get());
    EXPECT_GE(ticks, 1);
}

std::vector<WPARAM> characters;

LRESULT CALLBACK NoteCharacters(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_CHAR) characters.push_back(first);
    return DefWindowProcW(window, message, first, second);
}

TEST_F(MessagePump, TranslatesKeyMessages) {
    SetWindowLongPtrW(browser.Root(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NoteCharacters));
    PostMessageW(browser.Root(), WM_KEYDOWN, VK_SPACE, 0x00390001);
    End();
    PumpUntilSignalled(ended.Get());
    EXPECT_EQ(characters, std::vector<WPARAM>{L' '});
}

TEST_F(MessagePump, PostsAQuitAgainOnlyAfterTheEnd) {
    int ticksAfterQuit = 0;
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 37, 0);
    browser.OnTick([&] {
        EXPECT_EQ(WaitForSingleObject(ended.Get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
        if (++ticksAfterQuit == 3) End();
    });
    PumpUntilSignalled(ended.Get());
    EXPECT_GE(ticksAfterQuit, 3);
    EXPECT_EQ(QuitValueInQueue(), 37);
    EXPECT_EQ(QuitValueInQueue(), -1);
}

TEST_F(MessagePump, PostsTheValueOfTheLastQuit) {
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 5, 0);
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 0, 0);
    End();
    PumpUntilSignalled(ended.Get());
    EXPECT_EQ(QuitValueInQueue(), 0);
    EXPECT_EQ(QuitValueInQueue(), -1);
}

TEST_F(MessagePump, PostsNoQuitOfItsOwn) {
    End();
    PumpUntilSignalled(ended.Get());
    EXPECT_EQ(QuitValueInQueue(), -1);
}

std::vector<UINT> translated;
std::vector<UINT> dispatched;
decltype(&DispatchMessageW) realDispatch = nullptr;

BOOL WINAPI NoteTranslate(const MSG* message) {
    translated.push_back(message->message);
    return FALSE;
}

LRESULT WINAPI NoteDispatch(const MSG* message) {
    dispatched.push_back(message->message);
    return realDispatch(message);
}

TEST_F(MessagePump, TranslatesAndDispatchesAQuitLikeTheRest) {
    obtest::ImportPatch translate("user32.dll", "TranslateMessage", &NoteTranslate);
    obtest::ImportPatch dispatch("user32.dll", "DispatchMessageW", &NoteDispatch);
    ASSERT_TRUE(translate.Ok() && dispatch.Ok());
    realDispatch = dispatch.Real();
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 4, 0);
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
    End();
    PumpUntilSignalled(ended.Get());
    for (const UINT message : {static_cast<UINT>(WM_QUIT), static_cast<UINT>(WM_APP)})
        EXPECT_EQ(std::count(dispatched.begin(), dispatched.end(), message), 1) << message;
    EXPECT_EQ(translated, dispatched);
    EXPECT_EQ(QuitValueInQueue(), 4);
}

DWORD WINAPI PostAndEnd(DWORD, const HANDLE*, DWORD, DWORD, DWORD) {
    PostThreadMessageW(GetCurrentThreadId(), WM_APP + 1, 0, 0);
    return WAIT_OBJECT_0;
}

TEST_F(MessagePump, LeavesTheBrowserWhatComesWithTheEnd) {
    obtest::ImportPatch patch("user32.dll", "MsgWaitForMultipleObjectsEx", &PostAndEnd);
    ASSERT_TRUE(patch.Ok());
    PumpUntilSignalled(ended.Get());
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_APP + 1, WM_APP + 1, PM_REMOVE));
}

struct WaitCall {
    DWORD count;
    HANDLE handle;
    DWORD milliseconds;
    DWORD mask;
    DWORD flags;
};
std::vector<WaitCall> waits;
std::vector<DWORD> waitAnswers;

DWORD WINAPI AnswerWait(DWORD count, const HANDLE* handles, DWORD milliseconds, DWORD mask,
                        DWORD flags) {
    waits.push_back({count, *handles, milliseconds, mask, flags});
    const DWORD answer = waitAnswers.front();
    waitAnswers.erase(waitAnswers.begin());
    return answer;
}

TEST_F(MessagePump, WaitsForAllInputAndGoesOnAfterAnyAnswerButZero) {
    obtest::ImportPatch patch("user32.dll", "MsgWaitForMultipleObjectsEx", &AnswerWait);
    ASSERT_TRUE(patch.Ok());
    waitAnswers = {1, WAIT_FAILED, WAIT_TIMEOUT, WAIT_ABANDONED_0, WAIT_OBJECT_0};
    int ticks = 0;
    browser.OnTick([&] { ++ticks; });
    PostMessageW(browser.Root(), WM_TIMER, 1, 0);
    PumpUntilSignalled(ended.Get());
    ASSERT_EQ(waits.size(), 5u);
    for (const WaitCall& wait : waits) {
        EXPECT_EQ(wait.count, 1u);
        EXPECT_EQ(wait.handle, ended.Get());
        EXPECT_EQ(wait.milliseconds, INFINITE);
        EXPECT_EQ(wait.mask, 0x1CFFu);
        EXPECT_EQ(wait.flags, 0u);
    }
    EXPECT_GE(ticks, 1);
}

} // namespace

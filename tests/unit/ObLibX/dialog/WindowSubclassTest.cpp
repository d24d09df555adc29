// Procedures in front of a window's own: their order, and how they come and go.
#include "ObLibX/src/dialog/WindowSubclass.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

using namespace ObLibX;

// What a procedure does besides noting that it was called.
struct Link {
    std::wstring name;
    std::vector<std::wstring>* calls = nullptr;
    std::function<void(HWND window, UINT message)> before = [](HWND, UINT) {};
};

bool IsNoted(UINT message) { return message >= WM_USER || message == WM_NCDESTROY; }

LRESULT CALLBACK Note(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                      DWORD_PTR data) {
    auto& link = *reinterpret_cast<Link*>(data);
    EXPECT_EQ(static_cast<UINT_PTR>(data), id);
    if (IsNoted(message)) link.calls->push_back(link.name);
    if (message == WM_NCDESTROY) RemoveSubclass(window, &Note, &link);
    link.before(window, message);
    return CallNextSubclass(window, message, wParam, lParam);
}

LRESULT CALLBACK SystemNote(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                            DWORD_PTR data) {
    auto& link = *reinterpret_cast<Link*>(data);
    if (IsNoted(message)) link.calls->push_back(link.name);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, &SystemNote, id);
    return DefSubclassProc(window, message, wParam, lParam);
}

// A window whose own procedure notes its messages too, and answers 77 to WM_USER.
class SubclassProcedures : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &Own;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"WindowSubclassTest";
        RegisterClassW(&windowClass);
        ownCalls = &calls_;
        window_.Reset(CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 10, 10, nullptr,
                                      nullptr, windowClass.hInstance, nullptr));
        ASSERT_TRUE(window_);
        ownProcedure_ = Procedure();
        for (Link* const link : {&first_, &second_, &third_}) link->calls = &calls_;
    }
    void TearDown() override {
        window_.Reset();
        UnregisterClassW(L"WindowSubclassTest", GetModuleHandleW(nullptr));
    }

    HWND Window() const { return window_.Get(); }
    LONG_PTR Procedure() const { return GetWindowLongPtrW(Window(), GWLP_WNDPROC); }
    void Add(Link& link) { AddSubclass(Window(), &Note, &link); }
    void Remove(Link& link) { RemoveSubclass(Window(), &Note, &link); }
    void AddSystems(Link& link) {
        SetWindowSubclass(Window(), &SystemNote, reinterpret_cast<UINT_PTR>(&link),
                          reinterpret_cast<DWORD_PTR>(&link));
    }
    void RemoveSystems(Link& link) {
        RemoveWindowSubclass(Window(), &SystemNote, reinterpret_cast<UINT_PTR>(&link));
    }
    // Who was called for a message, in order.
    std::wstring CallsOf(UINT message = WM_USER) {
        calls_.clear();
        SendMessageW(Window(), message, 0, 0);
        return Calls();
    }
    std::wstring CallsAtTheEnd() {
        calls_.clear();
        window_.Reset();
        return Calls();
    }
    std::wstring Calls() const {
        std::wstring all;
        for (const std::wstring& call : calls_) all += all.empty() ? call : L" " + call;
        return all;
    }

    std::vector<std::wstring> calls_;
    ObLib::UniqueWindow window_;
    LONG_PTR ownProcedure_ = 0;
    Link first_{L"first"};
    Link second_{L"second"};
    Link third_{L"third"};

private:
    static inline std::vector<std::wstring>* ownCalls = nullptr;
    static LRESULT CALLBACK Own(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (IsNoted(message)) ownCalls->push_back(L"own");
        return message == WM_USER ? 77 : DefWindowProcW(window, message, wParam, lParam);
    }
};

TEST_F(SubclassProcedures, GetMessagesLastAddedFirst) {
    Add(first_);
    Add(second_);
    Add(first_);
    EXPECT_EQ(L"second first own", CallsOf());
    EXPECT_EQ(77, SendMessageW(Window(), WM_USER, 0, 0));
}

TEST_F(SubclassProcedures, LeaveTheWindowAsItWas) {
    Add(first_);
    Add(second_);
    Remove(first_);
    EXPECT_EQ(L"second own", CallsOf());
    EXPECT_NE(ownProcedure_, Procedure());
    Remove(second_);
    EXPECT_EQ(L"own", CallsOf());
    EXPECT_EQ(ownProcedure_, Procedure());
    Remove(second_);
    RemoveSubclass(nullptr, &Note, &second_);
    Add(third_);
    EXPECT_EQ(L"third own", CallsOf());
}

TEST_F(SubclassProcedures, EndWithTheWindow) {
    Add(first_);
    Add(second_);
    EXPECT_EQ(L"second first own", CallsAtTheEnd());
}

TEST_F(SubclassProcedures, MayGoWhileAMessageIsOnItsWay) {
    third_.before = [&](HWND, UINT message) {
        if (message != WM_USER) return;
        Remove(second_);
        Remove(third_);
    };
    for (Link* const link : {&first_, &second_, &third_}) Add(*link);
    EXPECT_EQ(L"third first own", CallsOf());
    EXPECT_EQ(L"first own", CallsOf());
}

TEST_F(SubclassProcedures, MayAllGoWhileAMessageIsOnItsWay) {
    second_.before = [&](HWND, UINT message) {
        if (message != WM_USER) return;
        Remove(first_);
        Remove(second_);
        EXPECT_NE(ownProcedure_, Procedure()) << "the message is still on its way";
    };
    Add(first_);
    Add(second_);
    EXPECT_EQ(L"second own", CallsOf());
    EXPECT_EQ(ownProcedure_, Procedure());
}

TEST_F(SubclassProcedures, MayComeWhileAMessageIsOnItsWay) {
    second_.before = [&](HWND, UINT message) {
        if (message == WM_USER) Add(third_);
    };
    Add(first_);
    Add(second_);
    EXPECT_EQ(L"second first own", CallsOf()) << "begun without it";
    EXPECT_EQ(L"third second first own", CallsOf());
}

TEST_F(SubclassProcedures, KeepTheirPlaceAroundAMessageInsideAnother) {
    second_.before = [&](HWND window, UINT message) {
        if (message == WM_USER) SendMessageW(window, WM_USER + 1, 0, 0);
    };
    for (Link* const link : {&first_, &second_, &third_}) Add(*link);
    EXPECT_EQ(L"third second third second first own first own", CallsOf());
}

// As a header that paints itself does, with another message besides its own.
TEST_F(SubclassProcedures, MayPassTwoMessagesOn) {
    second_.before = [](HWND window, UINT message) {
        if (message == WM_USER) CallNextSubclass(window, WM_USER + 1, 0, 0);
    };
    for (Link* const link : {&first_, &second_, &third_}) Add(*link);
    EXPECT_EQ(L"third second first own first own", CallsOf());
}

TEST_F(SubclassProcedures, MayDestroyTheWindow) {
    second_.before = [](HWND window, UINT message) {
        if (message == WM_USER) DestroyWindow(window);
    };
    Add(first_);
    Add(second_);
    EXPECT_EQ(L"second second first own", CallsOf()) << "nobody gets a message of a dead window";
    EXPECT_FALSE(IsWindow(Window()));
}

// Windows get WM_NCDESTROY from nobody but the system; a window that got it all the same lives on.
TEST_F(SubclassProcedures, EndAtAnEndThatIsNone) {
    Add(first_);
    EXPECT_EQ(L"first own", CallsOf(WM_NCDESTROY));
    EXPECT_EQ(ownProcedure_, Procedure());
    EXPECT_EQ(L"own", CallsOf());
}

TEST_F(SubclassProcedures, WorkBelowThoseOfTheSystem) {
    Add(first_);
    AddSystems(second_);
    Add(third_);
    EXPECT_EQ(L"second third first own", CallsOf());
    Remove(first_);
    Remove(third_);
    EXPECT_EQ(L"second own", CallsOf());
    RemoveSystems(second_);
    EXPECT_EQ(L"own", CallsOf());
    Add(first_);
    EXPECT_EQ(L"first own", CallsOf());
}

// As a spin control does with the edit beside it: what it takes away at its end is its own only.
TEST_F(SubclassProcedures, WorkAboveThoseOfTheSystem) {
    AddSystems(first_);
    Add(second_);
    EXPECT_EQ(L"second first own", CallsOf());
    RemoveSystems(first_);
    EXPECT_EQ(L"second own", CallsOf());
    EXPECT_EQ(L"second own", CallsAtTheEnd());
}

TEST_F(SubclassProcedures, EndWithTheWindowBelowThoseOfTheSystem) {
    Add(first_);
    AddSystems(second_);
    EXPECT_EQ(L"second first own", CallsAtTheEnd());
}

} // namespace

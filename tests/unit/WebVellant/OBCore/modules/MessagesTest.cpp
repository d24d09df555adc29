#include "OBCore/modules/Messages.h"

#include <cstdio>

#include "OBCore/modules/ResourceModule.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/WebVellant/OBCore/modules/BindingFixture.h"

namespace {

using obtest::MessageBoxWatcher;

constexpr obcore::TextId kText = obcore::TextId::ChoiceZip;

class Messages : public BindingFixture {
protected:
    void TearDown() override {
        obcore::FreeResourceModule();
        BindingFixture::TearDown();
    }

    static ObLib::UniqueWindow MakeOwner() {
        return ObLib::UniqueWindow(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0,
                                                   50, 50, nullptr, nullptr, nullptr, nullptr));
    }
};

TEST_F(Messages, HaveTheProductsCaption) {
    const ObLib::UniqueWindow owner = MakeOwner();
    MessageBoxWatcher boxes;
    obcore::ShowMessage(owner.Get(), L"Something happened");
    ASSERT_EQ(1u, boxes.Seen().size());
    const obtest::SeenBox box = boxes.Seen()[0];
    EXPECT_EQ(L"Ombrix Vellant", box.caption);
    EXPECT_EQ(L"Something happened", box.text);
    EXPECT_FALSE(box.hasIcon);
    EXPECT_EQ(owner.Get(), box.owner);
}

TEST_F(Messages, ShowATextOfTheResourcesPlainOrAsAWarning) {
    ASSERT_TRUE(obcore::BindResourceModule());
    const std::wstring text = obcore::LoadText(kText);
    MessageBoxWatcher boxes;
    obcore::ShowStringBox(nullptr, kText);
    obcore::ShowStringWarning(nullptr, kText);
    const auto seen = boxes.Seen();
    ASSERT_EQ(2u, seen.size());
    for (const obtest::SeenBox& box : seen) {
        EXPECT_EQ(L"Ombrix Vellant", box.caption);
        EXPECT_EQ(text, box.text);
    }
    EXPECT_FALSE(seen[0].hasIcon);
    EXPECT_TRUE(seen[1].hasIcon);
}

struct BoxCall {
    HWND owner;
    std::string text;
    std::string caption;
    UINT style;
};
std::vector<BoxCall> boxCalls;

int WINAPI RecordNarrowBox(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
    boxCalls.push_back({owner, text, caption, style});
    return IDOK;
}

class Assertions : public BindingFixture {
protected:
    void SetUp() override {
        BindingFixture::SetUp();
        ASSERT_TRUE(box_.Ok());
        boxCalls.clear();
    }

    // The text of a failed check in this thread.
    static std::string Text(const std::string& rest) {
        return "Pid: " + std::to_string(GetCurrentProcessId()) +
               " Tid: " + std::to_string(GetCurrentThreadId()) + "\n" + rest;
    }

private:
    obtest::ImportPatch<decltype(MessageBoxA)> box_{"user32.dll", "MessageBoxA", &RecordNarrowBox};
};

TEST_F(Assertions, NameExpressionSourceAndLine) {
    obcore::ShowAssertion("a != b", "OBCore\\CompressUtils", 17);
    ASSERT_EQ(1u, boxCalls.size());
    EXPECT_EQ(nullptr, boxCalls[0].owner);
    EXPECT_EQ(Text("Expr: a != b\nFile: OBCore\\CompressUtils\nLine: 17"), boxCalls[0].text);
    EXPECT_EQ("Assert Error", boxCalls[0].caption);
    EXPECT_EQ(48u, boxCalls[0].style);
}

TEST_F(Assertions, AreShownByAFailedCheckThatReturnsFalse) {
    EXPECT_FALSE(obcore::Check(false, "x", "OBCore\\Y", 3));
    ASSERT_EQ(1u, boxCalls.size());
    EXPECT_EQ(Text("Expr: x\nFile: OBCore\\Y\nLine: 3"), boxCalls[0].text);
}

TEST_F(Assertions, AreSilentWhenTheCheckIsTrue) {
    EXPECT_TRUE(obcore::Check(true, "x", "OBCore\\Y", 3));
    EXPECT_TRUE(boxCalls.empty());
}

TEST_F(Assertions, AreCutToTheirBuffer) {
    const std::string expression(5000, 'e');
    obcore::ShowAssertion(expression.c_str(), "OBCore\\Y", 3);
    ASSERT_EQ(1u, boxCalls.size());
    EXPECT_EQ(Text("Expr: " + expression).substr(0, 4095), boxCalls[0].text);
}

} // namespace

// The progress dialog isn't blank, grows with the display's scale and cuts no text. In the folder
// OB_PICTURES, where that is set, the test leaves its pictures to be judged by eye.
#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::HeldCall;

void Keep(const obtest::Picture& picture, const std::wstring& name) {
    obtest::KeepPicture(picture, L"transforms-" + name, 300, 110);
}

// The size that the system needs for the control's text, in as many lines as the text has.
SIZE NeededBy(HWND control) {
    const HDC context = GetDC(control);
    SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT needed{};
    DrawTextW(context, obtest::TextOf(control).c_str(), -1, &needed, DT_CALCRECT | DT_NOPREFIX);
    ReleaseDC(control, context);
    return {needed.right, needed.bottom};
}

BOOL CALLBACK ExpectFits(HWND control, LPARAM) {
    RECT place{};
    GetClientRect(control, &place);
    const SIZE needed = NeededBy(control);
    EXPECT_LE(needed.cx, place.right) << testing::PrintToString(obtest::TextOf(control));
    EXPECT_LE(needed.cy, place.bottom) << testing::PrintToString(obtest::TextOf(control));
    return TRUE;
}

class TransformPicture : public obtest::TransformsFixture {
protected:
    static void SetUpTestSuite() {
        obtest::BeAwareOfTheScale();
        TransformsFixture::SetUpTestSuite();
    }
    void SetUp() override {
        TransformsFixture::SetUp();
        WantResize();
    }

    // Looks at the dialog at the n-th call of this name.
    void LookAt(const wchar_t* call, int number, const std::function<void(HWND)>& look) {
        Answer(L"Hold", call);
        obtest::TransformUiDriver driver([&](HWND dialog) {
            for (int count = 1; count < number; ++count) {
                EXPECT_FALSE(HeldCall::Await().empty());
                HeldCall::Release();
                EXPECT_TRUE(obtest::WaitUntil([&] {
                    return obtest::FakeModules::CallsOf({call}).size() > std::size_t(count);
                }));
            }
            EXPECT_FALSE(HeldCall::Await().empty());
            look(dialog);
            Answer(L"Hold", L"nothing");
            HeldCall::Release();
        });
        EXPECT_TRUE(Run());
        EXPECT_TRUE(driver.SawDialog());
    }
    static void LookWhenSettled(HWND dialog, const wchar_t* name) {
        EnumChildWindows(dialog, &ExpectFits, 0);
        const auto picture = obtest::TakeSettledPicture(dialog);
        ASSERT_TRUE(picture) << "the dialog stays blank or never comes to rest";
        Keep(*picture, name);
    }
};

TEST_F(TransformPicture, ShowsWhichOfSeveralFilesIsBeingDone) {
    Stages(L"0,0,1,0");
    files_ = {L"C:\\t\\1.jpg", L"C:\\t\\2.jpg", L"C:\\t\\Beach & dunes in the evening.jpg",
              L"C:\\t\\4.jpg", L"C:\\t\\5.jpg"};
    LookAt(L"ExecuteTransforms", 3, [](HWND dialog) { LookWhenSettled(dialog, L"several"); });
}

TEST_F(TransformPicture, ShowsALongNameInTwoLines) {
    Stages(L"0,0,1,0");
    files_ = {L"C:\\t\\1.jpg", L"C:\\t\\Minutes and figures of the third quarter, "
                               L"second draft.docx"};
    LookAt(L"ExecuteTransforms", 2, [](HWND dialog) { LookWhenSettled(dialog, L"long"); });
}

TEST_F(TransformPicture, CutsANameThatIsTooLongForALine) {
    Stages(L"0,0,1,0");
    files_ = {L"C:\\t\\1.jpg",
              L"C:\\t\\Minutes and figures of the third quarter, second draft with "
              L"the remarks of all departments and a summary in front.docx"};
    LookAt(L"ExecuteTransforms", 2, [](HWND dialog) { LookWhenSettled(dialog, L"cut"); });
}

TEST_F(TransformPicture, ShowsAMovingBarWhileAListIsBeingDone) {
    Stages(L"0,1,0,0");
    files_ = {L"C:\\t\\1.pdf", L"C:\\t\\2.pdf"};
    LookAt(L"ExecutePostTransforms", 1, [](HWND dialog) {
        EnumChildWindows(dialog, &ExpectFits, 0);
        std::optional<obtest::Picture> picture; // the bar never comes to rest
        EXPECT_TRUE(obtest::WaitUntil([&] {
            picture = obtest::TakePicture(dialog);
            return picture && picture->Colours() >= 8;
        }));
        if (picture) Keep(*picture, L"moving");
    });
}

} // namespace

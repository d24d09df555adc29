// Encrypted PDFs in the stages of the manager's module, by the real work process: what is asked,
// how often, and what becomes of the file.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "services/providers/ui/ReceiptDialogIds.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

namespace {

using namespace stagetest;

constexpr std::uint32_t kWatermark = 5;

// What the user does with one question: types a password, if there is one, and presses a button.
struct Reply {
    std::wstring password;
    int button = IDOK;
};

// Answers one question after the other from a second thread; cancels those for which there is no
// reply.
class PasswordUser {
public:
    explicit PasswordUser(std::vector<Reply> replies)
        : replies_(std::move(replies)), thread_([this] { Run(); }) {}
    ~PasswordUser() { Stop(); }

    // The sentences of the questions so far.
    std::vector<std::wstring> Seen() {
        Stop();
        return seen_;
    }

private:
    void Stop() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
    }
    static bool IsQuestion(HWND window) {
        return GetDlgItem(window, OB_PDF_PASSWORD_TEXT) != nullptr;
    }
    void Run() {
        while (!stop_) {
            const HWND dialog = obtest::FindTopWindow(&IsQuestion, GetCurrentProcessId());
            if (dialog) Answer(dialog);
            Sleep(5);
        }
    }
    void Answer(HWND dialog) {
        seen_.push_back(obtest::TextOf(GetDlgItem(dialog, OB_PDF_PASSWORD_SENTENCE)));
        const bool isExpected = seen_.size() <= replies_.size();
        const Reply reply = isExpected ? replies_[seen_.size() - 1] : Reply{{}, IDCANCEL};
        SetWindowTextW(GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT), reply.password.c_str());
        obtest::DialogUiDriver::Press(dialog, reply.button);
        for (int waited = 0; waited < kLimit && IsWindow(dialog); waited += 5) Sleep(5);
    }

    const std::vector<Reply> replies_;
    std::vector<std::wstring> seen_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

std::string Pdf(const samples::Protection& protection = {}) {
    return samples::Encrypted(samples::OnePage("/PieceInfo <</A (CANARY)>>").File(), protection);
}

class PdfPasswordStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        const std::wstring key = std::wstring(kProviderManagerKey) + L"\\Transforms\\5";
        obtest::SetValue(HKEY_CURRENT_USER, key, L"Text", L"Ann");
    }
    void UseWatermark() {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kWatermark, kTransform));
    }
    // Every object of the result, which opens with this password.
    static std::string Content(const std::wstring& path, const char* password = "secret") {
        return samples::Unpacked(*obtest::ReadFileContent(path), password);
    }
    static void ExpectCleaned(const std::wstring& path) {
        EXPECT_EQ(Content(path).find("CANARY"), std::string::npos);
        EXPECT_THROW(Content(path, ""), QPDFExc);
    }
};

TEST_F(PdfPasswordStages, AskOnceForAllTransformsOfAFile) {
    UseWatermark();
    PasswordUser user({{L"secret"}});
    const std::wstring path = folder_.File(L"letter.pdf", Pdf());
    EXPECT_TRUE(Execute(path));
    EXPECT_TRUE(Final({path}));
    ASSERT_EQ(user.Seen().size(), 1u);
    EXPECT_EQ(user.Seen()[0], L"\u201Cletter.pdf\u201D is protected by a password. Please type it, "
                              L"so that the copy that goes out can be changed.");
    ExpectCleaned(path);
    EXPECT_NE(Content(path).find("/ObStamp1 Do"), std::string::npos);
}

TEST_F(PdfPasswordStages, AskAgainAfterAWrongPassword) {
    PasswordUser user({{L"Secret"}, {L"sec"}, {L"secret"}});
    const std::wstring path = folder_.File(L"letter.pdf", Pdf());
    EXPECT_TRUE(Execute(path));
    ASSERT_EQ(user.Seen().size(), 3u);
    EXPECT_EQ(user.Seen()[1].find(L"This password doesn't open \u201Cletter.pdf\u201D."), 0u);
    EXPECT_EQ(user.Seen()[2], user.Seen()[1]);
    ExpectCleaned(path);
}

TEST_F(PdfPasswordStages, TryTheRunsOtherPasswordsFirst) {
    PasswordUser user({{L"secret"}, {L"other"}});
    const std::wstring one = folder_.File(L"one.pdf", Pdf());
    const std::wstring two =
        folder_.File(L"two.pdf", Pdf({samples::Cipher::Aes128, "other", "owner"}));
    const std::wstring three = folder_.File(L"three.pdf", Pdf({samples::Cipher::Rc4Of128}));
    for (const std::wstring& path : {one, two, three}) EXPECT_TRUE(Execute(path));
    EXPECT_TRUE(Final({one, two, three}));
    EXPECT_EQ(user.Seen().size(), 2u);
    ExpectCleaned(one);
    ExpectCleaned(three);
    EXPECT_EQ(Content(two, "other").find("CANARY"), std::string::npos);
}

TEST_F(PdfPasswordStages, ForgetThePasswordsWithTheRun) {
    {
        PasswordUser user({{L"secret"}});
        EXPECT_TRUE(Execute(folder_.File(L"one.pdf", Pdf())));
        EXPECT_EQ(user.Seen().size(), 1u);
    }
    SetUp();
    PasswordUser user({{L"secret"}});
    EXPECT_TRUE(Execute(folder_.File(L"two.pdf", Pdf())));
    EXPECT_EQ(user.Seen().size(), 1u);
}

TEST_F(PdfPasswordStages, LeaveAFileAsItIsForTheWholeRun) {
    UseWatermark();
    PasswordUser user({{{}, OB_PDF_PASSWORD_LEAVE}});
    const std::wstring path = folder_.File(L"letter.pdf", Pdf());
    {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_TRUE(Execute(path));
        EXPECT_TRUE(boxes.Seen().empty());
    }
    EXPECT_EQ(obtest::ReadFileContent(path), Pdf());
    // The list of files that can't be cleaned has it.
    obtest::DialogUiDriver receipt(
        OB_RECEIPT_LIST, [](HWND dialog) { obtest::DialogUiDriver::Press(dialog, IDOK); });
    EXPECT_TRUE(Final({path}));
    EXPECT_TRUE(receipt.WasUsed());
    EXPECT_EQ(user.Seen().size(), 1u);
}

TEST_F(PdfPasswordStages, StopTheRunWhenTheQuestionIsCancelled) {
    PasswordUser user({{L"secret", IDCANCEL}});
    const obtest::MessageBoxWatcher boxes;
    const std::wstring path = folder_.File(L"letter.pdf", Pdf());
    EXPECT_FALSE(Execute(path));
    EXPECT_EQ(obtest::ReadFileContent(path), Pdf());
    EXPECT_EQ(Files(), (Names{L"letter.pdf"}));
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PdfPasswordStages, AskForTheOwnersPasswordWhereChangesAreForbidden) {
    PasswordUser user({{L"secret"}, {L"owner"}});
    const std::wstring path =
        folder_.File(L"letter.pdf", Pdf({samples::Cipher::Aes256, "secret", "owner", false}));
    EXPECT_TRUE(Execute(path));
    ASSERT_EQ(user.Seen().size(), 2u);
    EXPECT_NE(user.Seen()[1].find(L"needs the password of its owner"), std::wstring::npos);
    ExpectCleaned(path);
}

TEST_F(PdfPasswordStages, AskNothingAboutAFileThatOpensForEverybody) {
    PasswordUser user({});
    const std::wstring path =
        folder_.File(L"letter.pdf", Pdf({samples::Cipher::Aes256, "", "owner"}));
    EXPECT_TRUE(Execute(path));
    EXPECT_TRUE(user.Seen().empty());
    EXPECT_EQ(Content(path, "").find("CANARY"), std::string::npos);
}

TEST_F(PdfPasswordStages, TakePasswordsInAnyScript) {
    PasswordUser user({{L"\u03BA\u03BB\u03B5\u03B9\u03B4\u03AF"}});
    const std::wstring path = folder_.File(
        L"letter.pdf",
        Pdf({samples::Cipher::Aes256, "\xCE\xBA\xCE\xBB\xCE\xB5\xCE\xB9\xCE\xB4\xCE\xAF"}));
    EXPECT_TRUE(Execute(path));
    EXPECT_EQ(user.Seen().size(), 1u);
}

} // namespace

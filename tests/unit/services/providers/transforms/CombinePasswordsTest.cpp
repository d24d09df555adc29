// Encrypted PDFs that become one in the stages of the manager's module, by the real work process.
#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

namespace {

using namespace stagetest;

class CombinePasswords : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(65);
    }
    // Runs the stage on a plain PDF and two that "secret" opens; the user answers once.
    bool Combine(const wchar_t* password, int button) {
        const std::string plain = samples::OnePage().File();
        paths_ = {folder_.File(L"a.pdf", plain), folder_.File(L"b.pdf", samples::Encrypted(plain)),
                  folder_.File(L"c.pdf", samples::Encrypted(plain))};
        obtest::DialogUiDriver user(OB_PDF_PASSWORD_TEXT, [&](HWND dialog) {
            SetWindowTextW(GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT), password);
            obtest::DialogUiDriver::Press(dialog, button);
        });
        const bool done = List(paths_, 1);
        EXPECT_TRUE(user.WasUsed());
        return done;
    }
    static std::size_t PagesOf(const std::wstring& path, const char* password) {
        const std::string file = obtest::ReadFileContent(path).value_or("");
        QPDF pdf;
        pdf.processMemoryFile("combined", file.data(), file.size(), password);
        EXPECT_TRUE(pdf.isEncrypted());
        return pdf.getAllPages().size();
    }

    Names paths_;
};

TEST_F(CombinePasswords, AskOnceAndEncryptTheResult) {
    EXPECT_TRUE(Combine(L"secret", IDOK));
    EXPECT_EQ(Results(3), (Names{paths_[0]}));
    EXPECT_EQ(Files(), (Names{L"a.pdf"}));
    EXPECT_EQ(PagesOf(paths_[0], "secret"), 3u);
}

TEST_F(CombinePasswords, LetTheResultBeCleanedWithoutAnotherQuestion) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    EXPECT_TRUE(Combine(L"secret", IDOK)); // the stage cleans what it hasn't seen, first
    EXPECT_EQ(Results(3), (Names{paths_[0]}));
    EXPECT_EQ(PagesOf(paths_[0], "secret"), 3u);
    EXPECT_TRUE(Final({paths_[0]}));
}

// The first PDF's own password doesn't open the result.
TEST_F(CombinePasswords, LetAResultWithThePasswordOfALaterPdfBeCleaned) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    const std::string plain = samples::OnePage().File();
    const samples::Protection weak{.cipher = samples::Cipher::Rc4Of40, .user = "weak"};
    paths_ = {folder_.File(L"a.pdf", samples::Encrypted(plain, weak)),
              folder_.File(L"b.pdf", samples::Encrypted(plain, {.user = "strong", .owner = "o"}))};
    const auto type = [](HWND dialog, const wchar_t* password) {
        SetWindowTextW(GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT), password);
        obtest::DialogUiDriver::Press(dialog, IDOK);
        for (int waited = 0; waited < kLimit && IsWindow(dialog); waited += 5) Sleep(5);
    };
    std::optional<obtest::DialogUiDriver> second;
    const obtest::DialogUiDriver first(OB_PDF_PASSWORD_TEXT, [&](HWND dialog) {
        type(dialog, L"weak");
        second.emplace(OB_PDF_PASSWORD_TEXT, [&](HWND next) { type(next, L"strong"); });
    });
    EXPECT_TRUE(List(paths_, 1));
    EXPECT_EQ(Results(2), (Names{paths_[0]}));
    EXPECT_EQ(PagesOf(paths_[0], "strong"), 2u);
    EXPECT_TRUE(Final({paths_[0]}));
}

TEST_F(CombinePasswords, StopTheRunWhenTheUserDoes) {
    EXPECT_FALSE(Combine(L"", IDCANCEL));
    EXPECT_EQ(Files(), (Names{L"a.pdf", L"b.pdf", L"c.pdf"}));
}

// Each file is asked about, as each may have a password of its own.
TEST_F(CombinePasswords, LeaveAPdfInItsPlaceWhenAskedTo) {
    const std::string plain = samples::OnePage().File();
    const std::string locked = samples::Encrypted(plain);
    paths_ = {folder_.File(L"a.pdf", plain), folder_.File(L"b.pdf", locked),
              folder_.File(L"c.pdf", plain)};
    obtest::DialogUiDriver user(OB_PDF_PASSWORD_TEXT, [](HWND dialog) {
        obtest::DialogUiDriver::Press(dialog, OB_PDF_PASSWORD_LEAVE);
    });
    EXPECT_TRUE(List(paths_, 1));
    EXPECT_EQ(Results(3), (Names{paths_[0], paths_[1]}));
    EXPECT_EQ(obtest::ReadFileContent(paths_[1]), locked);
}

} // namespace

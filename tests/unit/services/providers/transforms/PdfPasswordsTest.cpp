// Which passwords of a run are tried for a PDF, and when the user is asked: with requests whose
// results the test decides, and the real question.
#include "services/providers/transforms/PdfPasswords.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"

using namespace providers;
using obtest::DialogUiDriver;

namespace {

// The password of a request as it is sent; empty without one.
std::string PasswordOf(const WorkOrder& order) {
    if (!order.HasPassword()) return {};
    const auto record = order.Record({});
    obcontract::WorkHeader header{};
    std::memcpy(&header, record.data(), sizeof header);
    std::string password(header.size, '\0');
    std::memcpy(password.data(), record.data() + sizeof header, password.size());
    return password;
}

class PdfPasswords : public testing::Test {
protected:
    using Results = std::function<WorkResult(const std::string& password)>;

    // Runs a request for the file, and records the passwords that were tried.
    WorkResult Request(const std::wstring& path, const Results& results) {
        tried_.clear();
        return RunWithPassword(call_, path, CleanOrder(),
                               [&](const WorkOrder& order) {
                                   WorkReport report;
                                   tried_.push_back(PasswordOf(order));
                                   report.result = results(tried_.back());
                                   return report;
                               })
            .result;
    }
    // The same; the user types this when asked.
    WorkResult Request(const std::wstring& path, const wchar_t* typed, const Results& results) {
        DialogUiDriver user(OB_PDF_PASSWORD_TEXT, [&](HWND dialog) {
            SetWindowTextW(GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT), typed);
            DialogUiDriver::Press(dialog, IDOK);
        });
        const WorkResult result = Request(path, results);
        wasAsked_ = user.WasUsed();
        return result;
    }
    // A file with the password "right".
    static WorkResult Opens(const std::string& password) {
        return password == "right" ? WorkResult::Changed : WorkResult::Encrypted;
    }

    const ObLib::UniqueKernelHandle ended_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const TransformSettings settings_{HKEY_CURRENT_USER, L"Software\\None"};
    const ProviderSet selected_;
    const RunPlan plan_;
    TransformRun run_{WorkSettings{}};
    CallWait wait_{ended_.Get(), nullptr};
    StageCall call_{run_, settings_, selected_, plan_, false, wait_};
    std::vector<std::string> tried_;
    bool wasAsked_ = false;
};

using Tried = std::vector<std::string>;

TEST_F(PdfPasswords, AreTriedAgainWhereTheyHaveOpenedTheFile) {
    for (const WorkResult opened : {WorkResult::Changed, WorkResult::Unchanged, WorkResult::Signed,
                                    WorkResult::NotSupported}) {
        run_.passwords = {};
        const auto results = [&](const std::string& password) {
            return password == "right" ? opened : WorkResult::Encrypted;
        };
        EXPECT_EQ(Request(L"C:\\a.pdf", L"right", results), opened);
        EXPECT_TRUE(wasAsked_);
        EXPECT_EQ(Request(L"C:\\a.pdf", results), opened);
        EXPECT_EQ(tried_, (Tried{"right"}));
        EXPECT_EQ(Request(L"C:\\other.pdf", results), opened);
        EXPECT_EQ(tried_, (Tried{"", "right"}));
    }
}

// The process may have ended before it read the file at all.
TEST_F(PdfPasswords, AreNotKeptWhenNothingShowsThatTheyOpenTheFile) {
    for (const WorkResult failed :
         {WorkResult::ProcessFailed, WorkResult::NotStarted, WorkResult::Unwritable,
          WorkResult::Unreadable, WorkResult::TooLarge, WorkResult::BadPicture, WorkResult::Damaged,
          WorkResult::Cancelled}) {
        run_.passwords = {};
        EXPECT_EQ(Request(L"C:\\a.pdf", L"wrong",
                          [&](const std::string& password) {
                              return password.empty() ? WorkResult::Encrypted : failed;
                          }),
                  failed);
        EXPECT_TRUE(wasAsked_);
        EXPECT_EQ(Request(L"C:\\a.pdf", L"right", Opens), WorkResult::Changed);
        EXPECT_TRUE(wasAsked_) << static_cast<int>(failed);
        EXPECT_EQ(tried_, (Tried{"", "right"}));
    }
}

TEST_F(PdfPasswords, OfOtherFilesAreNotKeptForAFileThatTheyMayNotOpen) {
    EXPECT_EQ(Request(L"C:\\a.pdf", L"right", Opens), WorkResult::Changed);
    EXPECT_EQ(Request(L"C:\\b.pdf",
                      [](const std::string& password) {
                          return password.empty() ? WorkResult::Encrypted
                                                  : WorkResult::ProcessFailed;
                      }),
              WorkResult::ProcessFailed);
    const auto results = [](const std::string& password) {
        return password == "other" ? WorkResult::Changed : WorkResult::Encrypted;
    };
    EXPECT_EQ(Request(L"C:\\b.pdf", L"other", results), WorkResult::Changed);
    EXPECT_EQ(tried_, (Tried{"", "right", "other"}));
}

// A later request may need the owner's password, or find another file in its place.
TEST_F(PdfPasswords, AreAskedForWhenTheKnownOneFails) {
    EXPECT_EQ(Request(L"C:\\a.pdf", L"right", Opens), WorkResult::Changed);
    const auto results = [](const std::string& password) {
        return password == "owner" ? WorkResult::Changed : WorkResult::Locked;
    };
    EXPECT_EQ(Request(L"C:\\a.pdf", L"owner", results), WorkResult::Changed);
    EXPECT_TRUE(wasAsked_);
    EXPECT_EQ(Request(L"C:\\a.pdf", results), WorkResult::Changed);
    EXPECT_EQ(tried_, (Tried{"owner"}));
}

} // namespace

// Whole requests whose zip may stay on a WebDAV server for a day: a later session deletes it.
#include <limits>

#include "services/providers/storage/DeletionSchedule.h"
#include "services/providers/storage/LocalDays.h"
#include "tests/e2e/WebDavRequest.h"
#include "tests/support/ProductRegistry.h"

namespace obtest {
namespace {

std::string TomorrowText() {
    constexpr std::uint64_t kDay = 24 * 3600 * 10'000'000ull; // as FILETIME counts
    FILETIME local{};
    SYSTEMTIME now{};
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &local);
    ULARGE_INTEGER time{{local.dwLowDateTime, local.dwHighDateTime}};
    time.QuadPart += kDay;
    local = {time.LowPart, time.HighPart};
    FileTimeToSystemTime(&local, &now);
    char text[16] = {};
    snprintf(text, sizeof text, "%04d-%02d-%02d", now.wYear, now.wMonth, now.wDay);
    return text;
}

class WebDavDeletion : public WebDavRequest {
protected:
    void SetUp() override {
        WebDavRequest::SetUp();
        SetUserValue(L"ExpireFiles", L"1");
        SetUserValue(L"S4DelExpireDays", L"1");
        expiry_ = Text(145);
        expiry_.replace(expiry_.find(L"%d"), 2, L"1");
        AddDefaultAccount(Address());
    }

    std::vector<providers::ScheduledDeletion> Scheduled() const {
        return schedule_.DueAt(std::numeric_limits<std::uint64_t>::max());
    }
    void Send() {
        PickerUiDriver driver(Pick(Choice::Zip, {LargeFile()}));
        EXPECT_EQ(AskShow(), kCancelled);
        EXPECT_TRUE(driver.Done());
        ExpectLinkToZip();
    }
    // As if the days were over for an hour.
    void MakeDue() const {
        auto scheduled = Scheduled();
        ASSERT_EQ(scheduled.size(), 1u);
        schedule_.Remove(scheduled[0]);
        scheduled[0].due = providers::TimeNow() - 3600 * 10'000'000ull;
        ASSERT_TRUE(schedule_.Add(scheduled[0]));
    }
    // A request that the user cancels, once nothing is on the schedule.
    void RunNextSession() {
        bool isEmpty = false;
        PickerUiDriver driver([&](OpenPicker& picker) {
            isEmpty = WaitUntil([this] { return Scheduled().empty(); });
            picker.PressCancel();
        });
        EXPECT_EQ(AskShow(), kCancelled);
        EXPECT_TRUE(driver.Done());
        EXPECT_TRUE(isEmpty);
    }

    providers::DeletionSchedule schedule_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
};

INSTANTIATE_TEST_SUITE_P(Servers, WebDavDeletion, testing::Values("apache", "ocs"));

TEST_P(WebDavDeletion, IsScheduledAndDoneByALaterSession) {
    const std::uint64_t before = providers::EndOfLocalDay(providers::TimeNow(), 1);
    const std::string earliest = TomorrowText();
    Send();
    const auto scheduled = Scheduled();
    ASSERT_EQ(scheduled.size(), 1u);
    EXPECT_EQ(scheduled[0].providerId, providers::kWebDavId);
    EXPECT_THAT(scheduled[0].due,
                testing::AnyOf(before, providers::EndOfLocalDay(providers::TimeNow(), 1)));
    if (MakesLinks()) {
        EXPECT_THAT(shares_.Shares(),
                    testing::ElementsAre(testing::AnyOf(testing::HasSubstr(earliest),
                                                        testing::HasSubstr(TomorrowText()))));
    }
    MakeDue();
    RunNextSession();
    EXPECT_EQ(AllStored(), Texts{});
}

TEST_P(WebDavDeletion, LeavesAFileThatWasChangedOnTheServer) {
    Send();
    const std::wstring stored = FilesOfServer() + L"\\" + Stored();
    ASSERT_TRUE(WriteFileContent(stored, "changed by its owner"));
    MakeDue();
    RunNextSession();
    EXPECT_EQ(ReadFileContent(stored), "changed by its owner");
}

} // namespace
} // namespace obtest

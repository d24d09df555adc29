// Whole requests while a file of the product is missing.
#include <gmock/gmock.h>

#include "tests/e2e/Missing.h"
#include "tests/e2e/RealRequest.h"

namespace obtest {
namespace {

using testing::ElementsAre;
using Texts = std::vector<std::wstring>;

// A suite of its own: a service that was bound once stays bound, as a library that has opened
// itself as a resource stays loaded.
class MissingArchiveService : public RealRequest {};

TEST_F(MissingArchiveService, LeadsToTheBrowsersOwnDialog) {
    const Missing service(L"obofcsvc64.dll");
    EXPECT_EQ(AskOpen().result, browser_.openFileNameAnswer);
    EXPECT_EQ(AskShow(), browser_.showAnswer);
    EXPECT_THAT(browser_.OwnDialogs(), ElementsAre("CallGetOpenFileName", "CallShow"));
    EXPECT_EQ(browser_.Count(BrowserCall::IsPickerWanted), 0u);
}

TEST_F(MissingArchiveService, IsFoundByTheNextRequestOnceItIsThereAgain) {
    {
        const Missing service(L"obofcsvc64.dll");
        EXPECT_EQ(AskOpen().result, browser_.openFileNameAnswer);
    }
    const std::wstring file = files_.File(L"back.txt");
    PickerUiDriver driver(Pick(Choice::None, {file}));
    EXPECT_EQ(AskOpen().given, Texts{file});
    EXPECT_TRUE(driver.Done());
}

class MissingModules : public RealRequest {};

TEST_F(MissingModules, WithoutTheProviderManagerThePageGetsACancel) {
    const Missing manager(L"PVXManager64.dll");
    ExpectCancels();
}

TEST_F(MissingModules, WithoutTheHostThePageGetsACancel) {
    const Missing host(L"obwmvapp.exe");
    ExpectCancels();
}

} // namespace
} // namespace obtest

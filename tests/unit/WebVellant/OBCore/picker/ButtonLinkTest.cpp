// The link text of the cloud button on both entry points. The window hooks are fakes here.
#include <memory>
#include <utility>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/picker/Drivers.h"
#include "OBCore/picker/PickerHooks.h"
#include "contracts/ExchangeBlock.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

std::wstring buttonLink;

} // namespace

// In the place of the product's hooks, which aren't linked here: the button has produced a link.
namespace obcore {

PickerHooks::PickerHooks(obcontract::ProviderManagerHandle) {}
PickerHooks::~PickerHooks() = default;

void PickerHooks::MoveLinkText(std::wstring& text) {
    if (!buttonLink.empty()) text = std::exchange(buttonLink, {});
}

} // namespace obcore

namespace {

using namespace obcontract;
using namespace obcore;
using namespace obtest;

using obcontract::kCancelled;

class ButtonLink : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        buttonLink = L"https://cloud/1";
        shell.script.results = {L"C:\\in\\one.txt"};
    }

    BOOL RunOpenFileName() {
        *block = {};
        OPENFILENAMEW page{};
        page.nMaxFile = 1000;
        WriteOpenFileNameRequest(*block, page);
        block->Status = ExchangeStatus::OpenFileNameTaken;
        OPENFILENAMEW request = ReadOpenFileNameRequest(*block, nullptr);
        return OpenFileNameDriver(&request, *block);
    }

    HRESULT RunDialog() {
        *block = {};
        block->Status = ExchangeStatus::DialogRequest;
        return DialogDriver(nullptr, *block);
    }

    void ExpectLink(const std::wstring& text) {
        EXPECT_EQ(block->Status, ExchangeStatus::LinkAnswer);
        EXPECT_EQ(block->Link.LinkOffset, 76);
        EXPECT_EQ(ReadText(*block, 76), text);
    }

    std::unique_ptr<ExchangeBlock> block = std::make_unique<ExchangeBlock>();
};

TEST_F(ButtonLink, OfAnEndedDialogIsTheAnswerBesideTheResultOfTheDialog) {
    shell.script.showResult = kCancelled;
    EXPECT_EQ(RunOpenFileName(), 0);
    ExpectLink(L"https://cloud/1");
    buttonLink = L"https://cloud/2";
    EXPECT_EQ(RunDialog(), kCancelled);
    ExpectLink(L"https://cloud/2");
    EXPECT_FALSE(WasCalled(L"ProcessPickedFiles"));
}

TEST_F(ButtonLink, OfAConfirmedDialogGoesThroughThePipelineOfTheOpenFileNameEntryPoint) {
    std::wstring seen;
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        seen = dialog.LinkText;
        return 1;
    };
    EXPECT_EQ(RunOpenFileName(), 1);
    EXPECT_EQ(seen, L"https://cloud/1");
    ExpectLink(L"https://cloud/1");

    buttonLink = L"https://cloud/1";
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        dialog.LinkText.clear(); // as the pipeline does when it makes a zip
        return 1;
    };
    EXPECT_EQ(RunOpenFileName(), 1);
    EXPECT_EQ(block->Status, ExchangeStatus::OpenFileNameTaken);
}

TEST_F(ButtonLink, OfAConfirmedDialogIsReplacedByThatOfThePipelineOnTheDialogEntryPoint) {
    std::wstring seen = L"not called";
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const Calls&) {
        seen = std::exchange(dialog.LinkText, L"https://upload");
        return 1;
    };
    EXPECT_EQ(RunDialog(), kCancelled);
    EXPECT_EQ(seen, L"");
    ExpectLink(L"https://upload");

    buttonLink = L"https://cloud/1";
    FakePlanning::process = nullptr;
    EXPECT_EQ(RunDialog(), kCancelled);
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(ButtonLink, IsCutAtTheEndOfTheBlockOnBothEntryPoints) {
    shell.script.showResult = kCancelled;
    for (const bool dialog : {false, true}) {
        buttonLink.assign(40000, L'l');
        dialog ? RunDialog() : RunOpenFileName();
        ExpectLink(std::wstring(32729, L'l'));
    }
}

} // namespace

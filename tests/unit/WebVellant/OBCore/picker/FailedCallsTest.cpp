// Calls of the shell's dialog that fail: each leaves a line of the trace.
#include <algorithm>
#include <string>

#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/picker/Drivers.h"
#include "tests/support/FakeModules.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using namespace obcontract;
using namespace obcore;
using namespace obtest;

class FailedDialogCalls : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        FakeModules::Answer(L"SelectProviders.2", L"0");
        shell.script.results = {L"C:\\in\\one.txt"};
        shell.script.onShow = [](RecordingFileDialog& dialog) {
            dialog.Select({L"C:\\in\\one.txt"});
            dialog.ChooseItem(999, 1002);
            dialog.Toggle(1003, true); // which the manager refuses, so that it is unticked
            dialog.PressOk();
        };
    }

    // The trace of one run in which this call of the dialog fails.
    std::vector<std::string> OpenFileNameLines(const std::wstring& failing) {
        shell.script.failures = {{failing, E_ACCESSDENIED}};
        static ExchangeBlock block;
        block = {};
        OPENFILENAMEW page{};
        page.lpstrFilter = L"All\0*.*\0";
        page.Flags = OFN_ALLOWMULTISELECT;
        WriteOpenFileNameRequest(block, page);
        OPENFILENAMEW request = ReadOpenFileNameRequest(block, nullptr);
        ForgetTrace();
        OpenFileNameDriver(&request, block);
        return TraceLines();
    }

    std::vector<std::string> DialogLines(const std::wstring& failing) {
        shell.script.failures = {{failing, E_ACCESSDENIED}};
        static ExchangeBlock block;
        block = {};
        ForgetTrace();
        DialogDriver(nullptr, block);
        return TraceLines();
    }

    static void ExpectLine(const std::vector<std::string>& lines, const std::string& line) {
        EXPECT_NE(std::ranges::find(lines, line), lines.end()) << line;
    }
};

std::string Line(const std::wstring& call) {
    return std::string(call.begin(), call.end()) + " failed 80070005";
}

TEST_F(FailedDialogCalls, LeaveATraceLineOnBothEntryPoints) {
    for (const wchar_t* const call :
         {L"CoCreateInstance", L"SetOptions", L"SetFileTypes", L"Advise", L"Unadvise",
          L"StartVisualGroup", L"EndVisualGroup", L"AddRadioButtonList", L"AddControlItem",
          L"AddCheckButton", L"SetControlState", L"SetSelectedControlItem", L"SetCheckButtonState",
          L"GetSelectedItems", L"GetWindow", L"GetResults", L"Show"}) {
        const std::string line = Line(call);
        ExpectLine(OpenFileNameLines(call), line);
        ExpectLine(DialogLines(call), line);
    }
    for (const wchar_t* const call : {L"GetOptions", L"SetFolder"}) {
        ExpectLine(DialogLines(call), Line(call));
    }
}

TEST_F(FailedDialogCalls, LeaveATraceLineWhenAnInterfaceIsMissing) {
    for (const wchar_t* const call :
         {L"QueryInterface(IFileDialogCustomize)", L"QueryInterface(IOleWindow)"}) {
        ExpectLine(OpenFileNameLines(call), Line(L"QueryInterface"));
        ExpectLine(DialogLines(call), Line(L"QueryInterface"));
    }
}

TEST_F(FailedDialogCalls, LeaveNoLineWhereNoneFails) {
    for (const std::string& line : OpenFileNameLines(L"")) {
        EXPECT_EQ(line.find("failed 8"), std::string::npos) << line;
    }
}

TEST_F(FailedDialogCalls, LeaveNoLineWhenTheUserCancels) {
    shell.script.showResult = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    for (const std::string& line : OpenFileNameLines(L"")) {
        EXPECT_FALSE(line.starts_with("Show failed")) << line;
    }
}

} // namespace

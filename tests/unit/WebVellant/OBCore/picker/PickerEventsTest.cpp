#include <algorithm>
#include <stdexcept>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/picker/PickerControls.h"
#include "OBCore/picker/Win7DlgEvents.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::Bool;
using obcontract::ProviderKind;
using obcontract::ProviderManagerEntries;
using obcontract::ProviderManagerHandle;
using namespace obcore;
using namespace obtest;

// The picker is open: one dialog with advised events, and a manager that supports everything.
class OpenPickerTest : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        SupportAll();
        Initialise(job);
        dialog = shell.Make();
        window.Reset(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                     nullptr, nullptr));
        shell.script.window = window.Get();
        windowText = std::to_wstring(reinterpret_cast<INT_PTR>(window.Get()));
        DWORD cookie = 0;
        ASSERT_EQ(dialog->Advise(&events, &cookie), S_OK);
        FakeModules::ForgetCalls();
    }

    void TearDown() override {
        EXPECT_EQ(dialog->References(), 1U) << "an interface wasn't released";
        EXPECT_EQ(FakeFileDialog::LiveObjects(), 0) << "an item or array wasn't released";
    }

    void Choose(bool sendItem, bool autoEncrypt) {
        job.SendItem = sendItem;
        job.AutoEncrypt = autoEncrypt;
    }

    std::wstring AskService() const {
        return L"TryToShowWarningOrErrorMessage(" + windowText + L", 0, 1)";
    }

    OBAttachJob job{OBOptions(), nullptr};
    Win7DlgEvents events{job, false};
    ObLib::ComPtr<RecordingFileDialog> dialog;
    ObLib::UniqueWindow window;
    std::wstring windowText;
};

class PickerEventsObject : public OpenPickerTest {};

TEST_F(PickerEventsObject, HasTheControlSideFirstAndItsFieldsAfterBothSides) {
    auto* const start = reinterpret_cast<std::uint8_t*>(&events);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(static_cast<IFileDialogControlEvents*>(&events)),
              start);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(static_cast<IFileDialogEvents*>(&events)), start + 8);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(&events.AttachRecord), start + 16);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(&events.ProviderManager), start + 24);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(&events.AllowMultiSelect), start + 32);
    EXPECT_EQ(sizeof(events), 40U);
    EXPECT_EQ(events.AttachRecord, &job);
    EXPECT_EQ(events.ProviderManager, job.OwnedProviderManager);
}

TEST_F(PickerEventsObject, AnswersForItsInterfacesAndNoOthers) {
    auto* const controls = static_cast<IFileDialogControlEvents*>(&events);
    auto* const dialogSide = static_cast<IFileDialogEvents*>(&events);
    void* found = nullptr;
    for (IUnknown* const side :
         {static_cast<IUnknown*>(controls), static_cast<IUnknown*>(dialogSide)}) {
        EXPECT_EQ(side->QueryInterface(IID_IFileDialogControlEvents, &found), S_OK);
        EXPECT_EQ(found, controls);
        EXPECT_EQ(side->QueryInterface(IID_IUnknown, &found), S_OK);
        EXPECT_EQ(found, controls);
        EXPECT_EQ(side->QueryInterface(IID_IFileDialogEvents, &found), S_OK);
        EXPECT_EQ(found, dialogSide);
        found = &job;
        EXPECT_EQ(side->QueryInterface(IID_IFileDialog, &found), E_NOINTERFACE);
        EXPECT_EQ(found, nullptr);
    }
}

TEST_F(PickerEventsObject, IsNotCounted) {
    EXPECT_EQ(events.AddRef(), 1U);
    EXPECT_EQ(events.AddRef(), 1U);
    EXPECT_EQ(events.Release(), 0U);
    EXPECT_EQ(events.Release(), 0U);
}

TEST_F(PickerEventsObject, DoesNothingAtTheOtherEvents) {
    IFileDialog* const file = dialog.Get();
    EXPECT_EQ(events.OnButtonClicked(dialog.Get(), 3011), S_OK);
    EXPECT_EQ(events.OnControlActivating(dialog.Get(), 997), S_OK);
    EXPECT_EQ(events.OnFolderChanging(file, nullptr), S_OK);
    EXPECT_EQ(events.OnFolderChange(file), S_OK);
    EXPECT_EQ(events.OnShareViolation(file, nullptr, nullptr), S_OK);
    EXPECT_EQ(events.OnTypeChange(file), S_OK);
    EXPECT_EQ(events.OnOverwrite(file, nullptr, nullptr), S_OK);
    EXPECT_EQ(FakeModules::Calls(), Calls{});
}

class PickerEventsChoice : public OpenPickerTest {};

TEST_F(PickerEventsChoice, ZipClearsTheOtherLists) {
    Choose(false, true);
    EXPECT_EQ(dialog->ChooseItem(997, 1000), S_OK);
    EXPECT_TRUE(job.SendItem);
    EXPECT_FALSE(job.AutoEncrypt);
    EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}),
              (Calls{L"SetSelectedControlItem(998, 0)", L"SetSelectedControlItem(999, 0)"}));
    EXPECT_FALSE(WasCalled(L"TryToShowWarningOrErrorMessage"));
    EXPECT_FALSE(WasCalled(L"dialog.RemoveControlItem"));
}

TEST_F(PickerEventsChoice, NoZipClearsTheOtherLists) {
    Choose(true, true);
    EXPECT_EQ(dialog->ChooseItem(999, 1002), S_OK);
    EXPECT_FALSE(job.SendItem);
    EXPECT_FALSE(job.AutoEncrypt);
    EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}),
              (Calls{L"SetSelectedControlItem(997, 0)", L"SetSelectedControlItem(998, 0)"}));
}

TEST_F(PickerEventsChoice, EncryptionAsksTheServiceAndClearsTheOtherLists) {
    for (const wchar_t* const answer : {L"0", L"1", L"131072"}) {
        FakeModules::Answer(L"TryToShowWarningOrErrorMessage", answer);
        FakeModules::ForgetCalls();
        Choose(true, false);
        EXPECT_EQ(dialog->ChooseItem(998, 1001), S_OK);
        EXPECT_FALSE(job.SendItem);
        EXPECT_TRUE(job.AutoEncrypt);
        ExpectOrder({AskService(), L"dialog.SetSelectedControlItem(997, 0)",
                     L"dialog.SetSelectedControlItem(999, 0)", L"dialog.GetSelectedItems()",
                     L"dialog.SetControlState(1003, 3)"});
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}).size(), 2U);
    }
}

TEST_F(PickerEventsChoice, RefusedEncryptionLeavesTheChoiceAndClearsItsOwnList) {
    struct {
        bool sendItem, autoEncrypt;
        const wchar_t* answer;
    } const rows[] = {{true, false, L"2"}, {false, false, L"65538"}, {false, true, L"2"}};
    for (const auto& row : rows) {
        FakeModules::Answer(L"TryToShowWarningOrErrorMessage", row.answer);
        FakeModules::ForgetCalls();
        Choose(row.sendItem, row.autoEncrypt);
        EXPECT_EQ(dialog->ChooseItem(998, 1001), S_OK);
        EXPECT_EQ(job.SendItem, row.sendItem);
        EXPECT_EQ(job.AutoEncrypt, row.autoEncrypt);
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}),
                  Calls{L"SetSelectedControlItem(998, 0)"});
        // The transforms are looked at all the same.
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetControlState"}).size(), 8U);
    }
}

TEST_F(PickerEventsChoice, ADialogThatRefusesToClearAListTakesTheChoiceAllTheSame) {
    shell.script.clearsLists = false;
    Choose(true, false);
    ASSERT_EQ(dialog->SetSelectedControlItem(997, 1000), S_OK);
    FakeModules::ForgetCalls();
    ForgetTrace();
    EXPECT_EQ(dialog->ChooseItem(999, 1002), S_OK);
    EXPECT_FALSE(job.SendItem);
    EXPECT_EQ(dialog->Selected(997), 1000U) << "the refusal leaves the list as it was";
    EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem", L"RemoveControlItem"}),
              (Calls{L"SetSelectedControlItem(997, 0)", L"SetSelectedControlItem(998, 0)"}));
    EXPECT_EQ(std::ranges::count(TraceLines(), "SetSelectedControlItem failed 80070057"), 2);
    EXPECT_EQ(FakeFileDialog::CallsOf({L"SetControlState"}).size(), 8U);
}

TEST_F(PickerEventsChoice, ADialogWithoutAWindowAsksWithNone) {
    shell.script.failures = {{L"QueryInterface(IOleWindow)", E_NOINTERFACE}};
    dialog->ChooseItem(998, 1001);
    EXPECT_EQ(FakeModules::Calls().front(), L"TryToShowWarningOrErrorMessage(0, 0, 1)");
    FakeModules::ForgetCalls();
    shell.script.failures = {{L"GetWindow", E_FAIL}};
    dialog->ChooseItem(998, 1001);
    EXPECT_EQ(FakeModules::Calls().front(), L"TryToShowWarningOrErrorMessage(0, 0, 1)");
}

TEST_F(PickerEventsChoice, AnyOtherItemChangesNothing) {
    for (const DWORD item : {0U, 997U, 999U, 1003U, 5000U}) {
        for (const bool sendItem : {true, false}) {
            Choose(sendItem, !sendItem);
            EXPECT_EQ(dialog->ChooseItem(997, item), S_OK);
            EXPECT_EQ(job.SendItem, sendItem);
            EXPECT_EQ(job.AutoEncrypt, !sendItem);
        }
    }
    EXPECT_EQ(FakeModules::Calls(), Calls{});
}

TEST_F(PickerEventsChoice, OnlyTheItemCounts) {
    Choose(true, false);
    EXPECT_EQ(dialog->ChooseItem(997, 1002), S_OK);
    EXPECT_FALSE(job.SendItem);
}

TEST_F(PickerEventsChoice, CountsTheSelectionForTheTransforms) {
    job.SingleAttachConversion = true;
    shell.script.selected = {L"C:\\a", L"C:\\b"};
    dialog->ChooseItem(999, 1002);
    EXPECT_TRUE(WasCalled(L"dialog.SetControlState(1003, 2)"));
    FakeModules::ForgetCalls();
    dialog->ChooseItem(997, 1000);
    EXPECT_TRUE(WasCalled(L"dialog.SetControlState(1003, 3)"));
}

TEST_F(PickerEventsChoice, CountsNothingWhenTheSelectionCannotBeHad) {
    job.SingleAttachConversion = true;
    shell.script.selected = {L"C:\\a", L"C:\\b"};
    for (const wchar_t* const failing : {L"GetSelectedItems", L"QueryInterface(IFileOpenDialog)"}) {
        shell.script.failures = {{failing, E_FAIL}};
        FakeModules::ForgetCalls();
        EXPECT_EQ(dialog->ChooseItem(999, 1002), S_OK);
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetControlState"}).size(), 8U);
        EXPECT_TRUE(WasCalled(L"dialog.SetControlState(1003, 3)"));
    }
}

class PickerEventsSelection : public OpenPickerTest {
protected:
    // The state that 1003 gets when that many files are selected.
    std::wstring StateWith(std::size_t count) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(dialog->Select(std::vector<std::wstring>(count, L"C:\\file")), S_OK);
        const Calls calls = FakeFileDialog::CallsOf({L"SetControlState"});
        return calls.empty() ? L"none" : calls.front();
    }
};

TEST_F(PickerEventsSelection, WithoutZipTwoFilesCloseTheTransforms) {
    Choose(false, false);
    job.SingleAttachConversion = true;
    EXPECT_EQ(StateWith(1), L"SetControlState(1003, 3)");
    EXPECT_EQ(StateWith(2), L"SetControlState(1003, 2)");
    EXPECT_EQ(StateWith(0), L"SetControlState(1003, 3)");
    job.SingleAttachConversion = false;
    EXPECT_EQ(StateWith(1), L"SetControlState(1003, 2)");
}

TEST_F(PickerEventsSelection, WithZipItsNumberHasNoEffect) {
    for (const bool encrypt : {false, true}) {
        Choose(!encrypt, encrypt);
        for (const std::size_t count : {0U, 1U, 2U, 7U}) {
            EXPECT_EQ(StateWith(count), L"SetControlState(1003, 3)");
        }
    }
}

TEST_F(PickerEventsSelection, CountsNothingWhenTheDialogGivesNone) {
    Choose(false, false);
    job.SingleAttachConversion = true;
    shell.script.failures = {{L"GetSelectedItems", E_FAIL}};
    EXPECT_EQ(StateWith(2), L"SetControlState(1003, 3)");
}

TEST_F(PickerEventsSelection, DoesNothingWithoutTheInterfaces) {
    shell.script.failures = {{L"QueryInterface(IFileOpenDialog)", E_NOINTERFACE}};
    FakeModules::ForgetCalls();
    EXPECT_EQ(dialog->Select({}), S_OK);
    EXPECT_EQ(FakeModules::Calls(), Calls{});
    shell.script.failures = {{L"QueryInterface(IFileDialogCustomize)", E_NOINTERFACE}};
    EXPECT_EQ(dialog->Select({}), S_OK);
    EXPECT_EQ(FakeModules::Calls(), Calls{L"dialog.GetSelectedItems()"});
}

class PickerEventsToggle : public OpenPickerTest {
protected:
    static std::wstring Type(const TransformControl& row) {
        return std::to_wstring(static_cast<std::uint32_t>(row.transform));
    }
    std::wstring Ready(const std::wstring& type) const {
        return L"GetReadyForConvert(" + windowText + L", manager, " + type + L", 4)";
    }
    std::wstring Options(const std::wstring& type) const {
        return L"ShowProviderOptionsWhenNoOptionsSet(manager, " + type + L", 4, null, " +
               windowText + L")";
    }
    static std::wstring Select(int mode, const std::wstring& type) {
        return L"SelectProviders(manager, " + std::to_wstring(mode) + L", " + type + L", 4)";
    }
    static std::wstring Undo(const TransformControl& row) {
        return L"dialog.SetCheckButtonState(" + std::to_wstring(row.control) + L", 0)";
    }
    static void Refuse(const std::wstring& call, const std::wstring& type, bool refuse = true) {
        FakeModules::Answer(call + L"." + type, refuse ? L"0" : L"1");
    }

    // What a toggle leaves: the field, and the calls that were made.
    Calls Toggle(const TransformControl& row, bool checked) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(dialog->Toggle(row.control, checked), S_OK);
        return FakeModules::Calls();
    }
};

TEST_F(PickerEventsToggle, ATickEntersTheTransformAtTheManager) {
    job.AutoConvertPDF = true; // so that combining has nothing to bring along
    for (const TransformControl& row : TransformControls()) {
        Calls expected;
        if (row.needsReady) expected.push_back(Ready(Type(row)));
        expected.push_back(Options(Type(row)));
        expected.push_back(Select(2, Type(row)));
        EXPECT_EQ(Toggle(row, true), expected) << row.control;
        EXPECT_TRUE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, NoTickLeavesTheTransformOut) {
    for (const TransformControl& row : TransformControls()) {
        job.*row.field = true;
        EXPECT_EQ(Toggle(row, false), Calls{Select(1, Type(row))}) << row.control;
        EXPECT_FALSE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, ATransformThatIsNotReadyIsUndone) {
    for (const TransformControl& row : TransformControls()) {
        if (!row.needsReady) continue;
        Refuse(L"GetReadyForConvert", Type(row));
        EXPECT_EQ(Toggle(row, true), (Calls{Ready(Type(row)), Undo(row)})) << row.control;
        EXPECT_FALSE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, AbandonedSettingsAreUndone) {
    job.AutoConvertPDF = true;
    for (const TransformControl& row : TransformControls()) {
        Refuse(L"ShowProviderOptionsWhenNoOptionsSet", Type(row));
        Calls expected;
        if (row.needsReady) expected.push_back(Ready(Type(row)));
        expected.push_back(Options(Type(row)));
        expected.push_back(Undo(row));
        EXPECT_EQ(Toggle(row, true), expected) << row.control;
        EXPECT_FALSE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, AFailedSelectionIsUndoneInBothDirections) {
    for (const TransformControl& row : TransformControls()) {
        Refuse(L"SelectProviders", Type(row));
        job.AutoConvertPDF = true;
        Calls calls = Toggle(row, true);
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls[calls.size() - 2], Select(2, Type(row)));
        EXPECT_EQ(calls.back(), Undo(row));
        EXPECT_FALSE(job.*row.field) << row.control;

        job.*row.field = true;
        EXPECT_EQ(Toggle(row, false), (Calls{Select(1, Type(row)), Undo(row)})) << row.control;
        EXPECT_FALSE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, WithoutAManagerATransformThatMustBeReadyIsUndone) {
    job.ProviderManager = nullptr;
    for (const TransformControl& row : TransformControls()) {
        if (!row.needsReady) continue;
        EXPECT_EQ(Toggle(row, true), Calls{Undo(row)}) << row.control;
        EXPECT_FALSE(job.*row.field) << row.control;
    }
}

TEST_F(PickerEventsToggle, OtherControlsAreIgnored) {
    for (const DWORD control : {100U, 997U, 1002U, 1004U, 1005U, 1013U, 3011U}) {
        FakeModules::ForgetCalls();
        EXPECT_EQ(dialog->Toggle(control, true), S_OK);
        EXPECT_EQ(FakeModules::Calls(), Calls{}) << control;
    }
}

// Ticking "combine" brings the conversion to PDF along.
class PickerEventsCombine : public PickerEventsToggle {
protected:
    Calls Tick(bool checked = true) { return Toggle(*FindTransformControl(1010), checked); }

    const Calls ownSteps{Options(L"65"), Select(2, L"65")};
    const std::wstring tickConversion = L"dialog.SetCheckButtonState(1006, 1)";

    Calls OwnStepsAnd(const Calls& more) const {
        Calls all{L"ShowProviderOptionsWhenNoOptionsSet(manager, 65, 4, null, " + windowText + L")",
                  Select(2, L"65")};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
};

TEST_F(PickerEventsCombine, TicksTheConversionAndSelectsItInLeaveOutMode) {
    EXPECT_EQ(Tick(), OwnStepsAnd({Ready(L"3"), Select(1, L"3"), tickConversion}));
    EXPECT_TRUE(job.AutoCombinePDFs);
    EXPECT_TRUE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, LeavesTheConversionAloneWhenItIsNotReady) {
    Refuse(L"GetReadyForConvert", L"3");
    EXPECT_EQ(Tick(), OwnStepsAnd({Ready(L"3")}));
    EXPECT_TRUE(job.AutoCombinePDFs);
    EXPECT_FALSE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, LeavesTheConversionAloneWhenItCannotBeSelected) {
    Refuse(L"SelectProviders", L"3");
    EXPECT_EQ(Tick(), OwnStepsAnd({Ready(L"3"), Select(1, L"3")}));
    EXPECT_TRUE(job.AutoCombinePDFs);
    EXPECT_FALSE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, LeavesAConversionThatIsOnAsItIs) {
    job.AutoConvertPDF = true;
    EXPECT_EQ(Tick(), OwnStepsAnd({}));
    EXPECT_TRUE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, UndoneItDoesNotTouchTheConversion) {
    Refuse(L"SelectProviders", L"65");
    EXPECT_EQ(Tick(), OwnStepsAnd({L"dialog.SetCheckButtonState(1010, 0)"}));
    EXPECT_FALSE(job.AutoCombinePDFs);
    EXPECT_FALSE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, WithoutAManagerInTheRecordTheConversionStaysOff) {
    job.ProviderManager = nullptr;
    EXPECT_EQ(Tick(), OwnStepsAnd({}));
    EXPECT_TRUE(job.AutoCombinePDFs);
    EXPECT_FALSE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, UntickingTheConversionLaterLeavesItOn) {
    Tick();
    EXPECT_EQ(Toggle(*FindTransformControl(1006), false), Calls{Select(1, L"3")});
    EXPECT_TRUE(job.AutoCombinePDFs);
    EXPECT_FALSE(job.AutoConvertPDF);
}

TEST_F(PickerEventsCombine, UntickedItBringsNothingAlong) {
    job.AutoCombinePDFs = true;
    EXPECT_EQ(Tick(false), Calls{Select(1, L"65")});
    EXPECT_FALSE(job.AutoConvertPDF);
}

class PickerEventsFileOk : public OpenPickerTest {
protected:
    HRESULT Confirm(std::size_t count) {
        shell.script.results.assign(count, L"C:\\file");
        return dialog->PressOk();
    }
};

TEST_F(PickerEventsFileOk, RefusesOtherThanOneFileForAPageThatTakesOne) {
    Choose(false, false);
    for (const std::size_t count : {0U, 2U, 3U}) {
        MessageBoxWatcher boxes;
        EXPECT_EQ(Confirm(count), S_FALSE);
        ASSERT_EQ(boxes.Seen().size(), 1U);
        const SeenBox box = boxes.Seen().front();
        EXPECT_EQ(box.caption, L"Ombrix Vellant");
        EXPECT_EQ(box.text, Text(104));
        EXPECT_FALSE(box.hasIcon);
        EXPECT_EQ(box.owner, window.Get());
    }
}

TEST_F(PickerEventsFileOk, AcceptsWithoutAWordWhatThePageCanTake) {
    struct {
        bool sendItem, autoEncrypt, allowMultiSelect;
        std::size_t count;
    } const rows[] = {
        {false, false, false, 1}, {false, false, true, 0}, {false, false, true, 2},
        {true, false, false, 0},  {true, false, false, 2}, {false, true, false, 0},
        {false, true, false, 2},
    };
    MessageBoxWatcher boxes;
    for (const auto& row : rows) {
        Choose(row.sendItem, row.autoEncrypt);
        events.AllowMultiSelect = row.allowMultiSelect;
        EXPECT_EQ(Confirm(row.count), S_OK) << row.count;
    }
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PickerEventsFileOk, AcceptsWhenTheResultsCannotBeHad) {
    Choose(false, false);
    MessageBoxWatcher boxes;
    for (const wchar_t* const failing : {L"GetResults", L"QueryInterface(IFileOpenDialog)"}) {
        shell.script.failures = {{failing, E_FAIL}};
        EXPECT_EQ(Confirm(2), S_OK);
    }
    EXPECT_TRUE(boxes.Seen().empty());
}

int WINAPI ThrowInsteadOfABox(HWND, LPCWSTR, LPCWSTR, UINT) { throw std::bad_alloc(); }

// A sister module's entry that throws, though none should: nothing may reach the shell.
class PickerEventsExceptions : public OpenPickerTest {
protected:
    void SetUp() override {
        OpenPickerTest::SetUp();
        saved = ProviderManager();
        auto& entries = const_cast<ProviderManagerEntries&>(ProviderManager());
        entries.IsProviderSupport = [](ProviderManagerHandle, std::uint32_t, ProviderKind) -> Bool {
            throw std::bad_alloc();
        };
        entries.SelectProviders = [](ProviderManagerHandle, std::uint32_t, std::uint32_t,
                                     ProviderKind) -> Bool { throw std::runtime_error("full"); };
    }
    void TearDown() override {
        const_cast<ProviderManagerEntries&>(ProviderManager()) = saved;
        OpenPickerTest::TearDown();
    }

    ProviderManagerEntries saved{};
};

TEST_F(PickerEventsExceptions, StopAtEachMethod) {
    EXPECT_EQ(dialog->ChooseItem(997, 1000), S_OK);
    EXPECT_EQ(dialog->Select({L"C:\\a"}), S_OK);
    EXPECT_EQ(dialog->Toggle(1003, true), S_OK);
}

TEST_F(PickerEventsExceptions, KeepTheDialogOpenAtOk) {
    const ImportPatch<decltype(&MessageBoxW)> box("user32.dll", "MessageBoxW", &ThrowInsteadOfABox);
    ASSERT_TRUE(box.Ok());
    Choose(false, false);
    shell.script.results = {L"C:\\a", L"C:\\b"};
    EXPECT_EQ(dialog->PressOk(), S_FALSE);
}

} // namespace

#include "OBCore/picker/PickerControls.h"

#include "tests/support/FakeModules.h"
#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using obcontract::TransformId;
using namespace obcore;
using namespace obtest;

const HWND kOwner = reinterpret_cast<HWND>(INT_PTR{4711});
const wchar_t kAskService[] = L"TryToShowWarningOrErrorMessage(4711, 0, 1)";

class PickerControlsAdded : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        Initialise(job);
    }

    void Add() {
        dialog = shell.Make();
        FakeModules::ForgetCalls();
        AddPickerControls(*dialog.Get(), kOwner, job);
        EXPECT_EQ(dialog->References(), 1U);
    }

    OBAttachJob job{OBOptions(), kOwner};
    ObLib::ComPtr<RecordingFileDialog> dialog;
};

TEST_F(PickerControlsAdded, AreInFourGroupsInOrderWithTheirTexts) {
    job.SingleAttachConversion = true;
    Add();
    const Calls expected = {
        L"StartVisualGroup(100, \"\")",
        L"AddRadioButtonList(997)",
        L"AddControlItem(997, 1000, " + QuotedText(101) + L")",
        L"SetControlState(997, 3)",
        L"AddRadioButtonList(998)",
        L"AddControlItem(998, 1001, " + QuotedText(102) + L")",
        L"SetControlState(998, 3)",
        L"AddRadioButtonList(999)",
        L"AddControlItem(999, 1002, " + QuotedText(103) + L")",
        L"SetControlState(999, 3)",
        L"EndVisualGroup()",
        L"StartVisualGroup(102, \"\")",
        L"AddCheckButton(1003, " + QuotedText(182) + L", 0)",
        L"AddCheckButton(1008, " + QuotedText(184) + L", 0)",
        L"AddCheckButton(1009, " + QuotedText(185) + L", 0)",
        L"EndVisualGroup()",
        L"StartVisualGroup(103, \"\")",
        L"AddCheckButton(1007, " + QuotedText(181) + L", 0)",
        L"AddCheckButton(1006, " + QuotedText(180) + L", 0)",
        L"AddCheckButton(1012, " + QuotedText(188) + L", 0)",
        L"EndVisualGroup()",
        L"StartVisualGroup(104, \"\")",
        L"AddCheckButton(1010, " + QuotedText(186) + L", 0)",
        L"AddCheckButton(1011, " + QuotedText(187) + L", 0)",
        L"EndVisualGroup()",
        L"SetSelectedControlItem(997, 1000)",
        L"SetControlState(1003, 2)",
        L"SetControlState(1006, 2)",
        L"SetControlState(1010, 2)",
        L"SetControlState(1007, 2)",
        L"SetControlState(1008, 2)",
        L"SetControlState(1009, 2)",
        L"SetControlState(1011, 2)",
        L"SetControlState(1012, 2)",
    };
    EXPECT_EQ(FakeFileDialog::Calls(), expected);
}

TEST_F(PickerControlsAdded, TickEachTransformWhoseFieldIsOn) {
    for (const TransformControl& row : TransformControls()) {
        static_cast<OBOptions&>(job) = OBOptions();
        job.*row.field = true;
        Add();
        for (const std::wstring& call : FakeFileDialog::CallsOf({L"AddCheckButton"})) {
            const bool own =
                call.starts_with(L"AddCheckButton(" + std::to_wstring(row.control) + L",");
            EXPECT_TRUE(call.ends_with(own ? L", 1)" : L", 0)")) << testing::PrintToString(call);
        }
    }
}

TEST_F(PickerControlsAdded, LeaveOutAGroupThatCannotBeStartedAndGoOn) {
    for (const wchar_t* const group : {L"100", L"102", L"103", L"104"}) {
        shell.script.failures = {{L"StartVisualGroup(" + std::wstring(group) + L")", E_FAIL}};
        Add();
        EXPECT_EQ(FakeFileDialog::CallsOf({L"StartVisualGroup"}).size(), 4U);
        EXPECT_EQ(FakeFileDialog::CallsOf({L"EndVisualGroup"}).size(), 3U);
        const bool choices = group != std::wstring(L"100");
        EXPECT_EQ(FakeFileDialog::CallsOf({L"AddRadioButtonList"}).size(), choices ? 3U : 0U);
        const std::size_t checks = !choices ? 8 : group == std::wstring(L"104") ? 6 : 5;
        EXPECT_EQ(FakeFileDialog::CallsOf({L"AddCheckButton"}).size(), checks);
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}).size(), 1U);
    }
}

TEST_F(PickerControlsAdded, SelectTheChoiceOfTheOptions) {
    struct {
        bool sendItem, autoEncrypt;
        const wchar_t* selected;
    } const rows[] = {
        {true, false, L"SetSelectedControlItem(997, 1000)"},
        {false, true, L"SetSelectedControlItem(998, 1001)"},
        {true, true, L"SetSelectedControlItem(998, 1001)"},
        {false, false, L"SetSelectedControlItem(999, 1002)"},
    };
    for (const auto& row : rows) {
        job.SendItem = row.sendItem;
        job.AutoEncrypt = row.autoEncrypt;
        Add();
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}), Calls{row.selected});
    }
}

TEST_F(PickerControlsAdded, AreNotAddedToADialogThatCannotBeCustomised) {
    shell.script.failures = {{L"QueryInterface(IFileDialogCustomize)", E_NOINTERFACE}};
    job.AutoEncrypt = true;
    FakeModules::Answer(L"TryToShowWarningOrErrorMessage", L"2");
    Add();
    EXPECT_EQ(FakeModules::Calls(), Calls{});
    EXPECT_TRUE(job.AutoEncrypt);
}

TEST_F(PickerControlsAdded, SwitchEncryptionOffForTheRunWhenTheServiceRefusesIt) {
    for (const bool sendItem : {true, false}) {
        job.SendItem = sendItem;
        job.AutoEncrypt = true;
        // Only the low half of the answer counts.
        FakeModules::Answer(L"TryToShowWarningOrErrorMessage", sendItem ? L"2" : L"65538");
        Add();
        EXPECT_FALSE(job.AutoEncrypt);
        EXPECT_EQ(FakeModules::Calls().front(), kAskService);
        EXPECT_EQ(FakeFileDialog::CallsOf({L"SetSelectedControlItem"}),
                  Calls{sendItem ? L"SetSelectedControlItem(997, 1000)"
                                 : L"SetSelectedControlItem(999, 1002)"});
    }
}

TEST_F(PickerControlsAdded, KeepEncryptionWhenTheServiceAnswersAnythingElse) {
    for (const wchar_t* const answer : {L"0", L"1", L"3", L"131072"}) {
        job.AutoEncrypt = true;
        FakeModules::Answer(L"TryToShowWarningOrErrorMessage", answer);
        Add();
        EXPECT_TRUE(job.AutoEncrypt);
        EXPECT_EQ(FakeModules::Calls().front(), kAskService);
    }
}

TEST_F(PickerControlsAdded, DoNotAskTheServiceWhenEncryptionIsOffOrImpossible) {
    FakeModules::Answer(L"TryToShowWarningOrErrorMessage", L"2");
    struct {
        bool autoEncrypt, noEncryption;
        std::uint16_t methods;
    } const rows[] = {{false, false, 4}, {true, true, 4}, {true, false, 0}};
    for (const auto& row : rows) {
        job.AutoEncrypt = row.autoEncrypt;
        job.NoEncryption = row.noEncryption;
        job.AllowedEncryptMethods = row.methods;
        Add();
        EXPECT_EQ(job.AutoEncrypt, row.autoEncrypt);
        EXPECT_FALSE(WasCalled(L"TryToShowWarningOrErrorMessage"));
    }
}

TEST_F(PickerControlsAdded, CountNoSelectionWhenTheTransformsAreFirstEnabled) {
    SupportAll();
    job.SendItem = false;
    job.SingleAttachConversion = true;
    Add();
    EXPECT_TRUE(WasCalled(L"dialog.SetControlState(1003, 3)"));
    job.SingleAttachConversion = false;
    Add();
    EXPECT_TRUE(WasCalled(L"dialog.SetControlState(1003, 2)"));
}

class TransformControlStates : public PickerTest {
protected:
    void SetUp() override {
        PickerTest::SetUp();
        Initialise(job);
    }

    // The states in the order in which they were set, 3 or 2 each.
    std::wstring Update(std::uint32_t selectionCount) {
        dialog = shell.Make();
        FakeModules::ForgetCalls();
        UpdateTransformControls(dialog.Get(), job, selectionCount);
        std::wstring states;
        for (const std::wstring& call : FakeFileDialog::Calls()) {
            states += call.at(call.size() - 2);
        }
        return states;
    }

    OBAttachJob job{OBOptions(), nullptr};
    ObLib::ComPtr<RecordingFileDialog> dialog;
};

TEST_F(TransformControlStates, AreSetInTheirOwnOrderAndAskTheManagerForEach) {
    Support(TransformId::CombinePdfs);
    EXPECT_EQ(Update(0), L"22322222");
    const Calls expected = {
        L"IsProviderSupport(manager, 2, 4)",  L"dialog.SetControlState(1003, 2)",
        L"IsProviderSupport(manager, 3, 4)",  L"dialog.SetControlState(1006, 2)",
        L"IsProviderSupport(manager, 65, 4)", L"dialog.SetControlState(1010, 3)",
        L"IsProviderSupport(manager, 5, 4)",  L"dialog.SetControlState(1007, 2)",
        L"IsProviderSupport(manager, 50, 4)", L"dialog.SetControlState(1008, 2)",
        L"IsProviderSupport(manager, 51, 4)", L"dialog.SetControlState(1009, 2)",
        L"IsProviderSupport(manager, 66, 4)", L"dialog.SetControlState(1011, 2)",
        L"IsProviderSupport(manager, 70, 4)", L"dialog.SetControlState(1012, 2)",
    };
    EXPECT_EQ(FakeModules::Calls(), expected);
}

TEST_F(TransformControlStates, FollowChoiceAndSelection) {
    SupportAll();
    struct {
        bool sendItem, autoEncrypt, singleConversion;
        std::uint32_t count;
        bool open;
    } const rows[] = {
        {false, false, true, 0, true},   {false, false, true, 1, true},
        {false, false, true, 2, false},  {false, false, true, 500, false},
        {false, false, false, 0, false}, {false, false, false, 1, false},
        {false, false, false, 2, false}, {true, false, false, 0, true},
        {true, false, false, 1, true},   {true, false, false, 2, true},
        {true, false, true, 500, true},  {false, true, false, 0, true},
        {false, true, false, 1, true},   {false, true, false, 2, true},
    };
    for (const auto& row : rows) {
        job.SendItem = row.sendItem;
        job.AutoEncrypt = row.autoEncrypt;
        job.SingleAttachConversion = row.singleConversion;
        EXPECT_EQ(Update(row.count), row.open ? L"33333333" : L"22222222")
            << row.sendItem << row.autoEncrypt << row.singleConversion << " " << row.count;
    }
}

TEST_F(TransformControlStates, AreAllDisabledWithoutAManager) {
    SupportAll();
    job.ProviderManager = nullptr;
    EXPECT_EQ(Update(0), L"22222222");
    EXPECT_FALSE(WasCalled(L"IsProviderSupport"));
}

TEST_F(TransformControlStates, LeaveFieldsAndTicksAsTheyAre) {
    job.AutoSignPDFs = true;
    EXPECT_EQ(Update(0), L"22222222");
    EXPECT_TRUE(job.AutoSignPDFs);
    EXPECT_FALSE(WasCalled(L"dialog.SetCheckButtonState"));
}

TEST(TransformControlTable, FindsRowsByControlAndNothingElse) {
    struct {
        DWORD control;
        bool OBOptions::*field;
        TransformId transform;
        bool needsReady;
    } const rows[] = {
        {1003, &OBOptions::AutoResizeImages, TransformId{2}, false},
        {1006, &OBOptions::AutoConvertPDF, TransformId{3}, true},
        {1007, &OBOptions::AutoWatermark, TransformId{5}, false},
        {1008, &OBOptions::AutoConvertPhotos, TransformId{50}, true},
        {1009, &OBOptions::AutoRemoveInfo, TransformId{51}, true},
        {1010, &OBOptions::AutoCombinePDFs, TransformId{65}, false},
        {1011, &OBOptions::AutoSignPDFs, TransformId{66}, false},
        {1012, &OBOptions::AutoConvertFromPDF, TransformId{70}, false},
    };
    for (const auto& row : rows) {
        const TransformControl* const found = FindTransformControl(row.control);
        ASSERT_NE(found, nullptr) << row.control;
        EXPECT_EQ(found->field, row.field) << row.control;
        EXPECT_EQ(found->transform, row.transform) << row.control;
        EXPECT_EQ(found->needsReady, row.needsReady) << row.control;
    }
    for (const DWORD other : {0U, 100U, 997U, 1002U, 1004U, 1005U, 1013U}) {
        EXPECT_EQ(FindTransformControl(other), nullptr) << other;
    }
}

} // namespace

// The automatic transforms in the settings window: their boxes and buttons, and what the provider
// manager is asked.
#include "OBCore/settings/TransformRows.h"

#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obcore::kTransformBoxes;
using obcore::OBOptions;
using obcore::TransformBoxRow;
using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

using Ids = std::vector<int>;

// What each row is, whatever the names of the ids.
struct WantedRow {
    int id;
    bool OBOptions::*option;
    int box;
    int settings;
    bool asksReady;
};

constexpr WantedRow kWanted[] = {
    {3, &OBOptions::AutoConvertPDF, 1016, 1012, true},
    {2, &OBOptions::AutoResizeImages, 1017, 1013, false},
    {5, &OBOptions::AutoWatermark, 1018, 1014, false},
    {50, &OBOptions::AutoConvertPhotos, 1050, 1040, true},
    {51, &OBOptions::AutoRemoveInfo, 1051, 1041, true},
    {65, &OBOptions::AutoCombinePDFs, 1052, 0, false},
    {66, &OBOptions::AutoSignPDFs, 1054, 1044, false},
    {70, &OBOptions::AutoConvertFromPDF, 1055, 1045, false},
};

const Ids kBoxes{1016, 1017, 1018, 1050, 1051, 1052, 1054, 1055};
const Ids kButtons{1012, 1013, 1014, 1040, 1041, 1044, 1045};

std::wstring NumberOf(HWND window) { return std::to_wstring(reinterpret_cast<INT_PTR>(window)); }

class TransformRows : public obtest::OptionsFixture {};

TEST_F(TransformRows, HasOneRowForEachTransform) {
    ASSERT_EQ(std::size(kWanted), kTransformBoxes.size());
    for (std::size_t at = 0; at < kTransformBoxes.size(); ++at) {
        const TransformBoxRow& row = kTransformBoxes[at];
        EXPECT_EQ(kWanted[at].id, static_cast<int>(row.id)) << at;
        EXPECT_EQ(kWanted[at].option, row.option) << at;
        EXPECT_EQ(kWanted[at].box, row.box) << at;
        EXPECT_EQ(kWanted[at].settings, row.settings) << at;
        EXPECT_EQ(kWanted[at].asksReady, row.asksReady) << at;
    }
}

TEST_F(TransformRows, TicksTheBoxOfEachOptionThatIsOn) {
    for (const WantedRow& row : kWanted) {
        options_.*row.option = true;
        Show([&](const OpenDialog& dialog) {
            EXPECT_EQ(Ids{row.box}, dialog.Checked(kBoxes));
            EXPECT_EQ(Ids(), dialog.Disabled(kBoxes));
            EXPECT_EQ(Ids(), dialog.Disabled(kButtons));
        });
        options_.*row.option = false;
    }
}

TEST_F(TransformRows, AsksForEachRowAndDisablesWhatIsNotSupported) {
    for (const WantedRow& row : kWanted) {
        Support(row.id, false);
        FakeModules::ForgetCalls();
        Show([&](const OpenDialog& dialog) {
            EXPECT_EQ(Ids{row.box}, dialog.Disabled(kBoxes));
            EXPECT_EQ(row.settings != 0 ? Ids{row.settings} : Ids(), dialog.Disabled(kButtons));
        });
        Lines asked;
        for (const WantedRow& each : kWanted) {
            asked.push_back(L"IsProviderSupport(manager, " + std::to_wstring(each.id) + L", 4)");
        }
        EXPECT_EQ(asked, FakeModules::CallsOf({L"IsProviderSupport"}));
        Support(row.id, true);
    }
}

TEST_F(TransformRows, DisablesAllWithoutAManagerAndAsksNobody) {
    const auto manager = options_.ProviderManager;
    options_.ProviderManager = nullptr;
    options_.AutoWatermark = true;
    Show([](const OpenDialog& dialog) {
        EXPECT_EQ(kBoxes, dialog.Disabled(kBoxes));
        EXPECT_EQ(kButtons, dialog.Disabled(kButtons));
        EXPECT_EQ(Ids{1018}, dialog.Checked(kBoxes)); // the option stays as it is
    });
    EXPECT_EQ(Lines(), FakeModules::Calls());
    EXPECT_TRUE(options_.AutoWatermark);
    options_.ProviderManager = manager;
}

TEST_F(TransformRows, GetsReadyOnlyWhereTheRowWantsItAndThenShowsMissingSettings) {
    for (const WantedRow& row : kWanted) {
        FakeModules::ForgetCalls();
        Lines wanted;
        Show([&](const OpenDialog& dialog) {
            dialog.Press(row.box);
            const std::wstring id = std::to_wstring(row.id);
            const std::wstring window = NumberOf(dialog.window);
            if (row.asksReady) {
                wanted.push_back(L"GetReadyForConvert(" + window + L", manager, " + id + L", 4)");
            }
            wanted.push_back(L"ShowProviderOptionsWhenNoOptionsSet(manager, " + id +
                             L", 4, null, " + window + L")");
            EXPECT_EQ(Ids{row.box}, dialog.Checked(kBoxes));
        });
        EXPECT_EQ(wanted, SettingsCalls()) << row.id;
        EXPECT_TRUE(options_.*row.option) << row.id;
        options_.*row.option = false;
    }
}

TEST_F(TransformRows, TakesATickBackThatCantBeMadeReady) {
    for (const WantedRow& row : kWanted) {
        if (!row.asksReady) continue;
        Answer(L"GetReadyForConvert." + std::to_wstring(row.id), L"0");
        FakeModules::ForgetCalls();
        Show([&](const OpenDialog& dialog) {
            dialog.Press(row.box);
            EXPECT_EQ(Ids(), dialog.Checked(kBoxes)) << row.id;
            EXPECT_FALSE(options_.*row.option);
        });
        EXPECT_EQ(1u, SettingsCalls().size()) << "no settings are shown";
    }
}

TEST_F(TransformRows, TakesATickBackWhoseSettingsAreCancelled) {
    for (const WantedRow& row : kWanted) {
        Answer(L"ShowProviderOptionsWhenNoOptionsSet." + std::to_wstring(row.id), L"0");
        Show([&](const OpenDialog& dialog) {
            dialog.Press(row.box);
            EXPECT_EQ(Ids(), dialog.Checked(kBoxes)) << row.id;
        });
        EXPECT_FALSE(options_.*row.option) << row.id;
    }
}

TEST_F(TransformRows, CallsNobodyWhenABoxIsCleared) {
    for (const WantedRow& row : kWanted) {
        options_.*row.option = true;
        FakeModules::ForgetCalls();
        Show([&](const OpenDialog& dialog) {
            dialog.Press(row.box);
            EXPECT_EQ(Ids(), dialog.Checked(kBoxes));
        });
        EXPECT_EQ(Lines(), SettingsCalls()) << row.id;
        EXPECT_FALSE(options_.*row.option) << row.id;
    }
}

TEST_F(TransformRows, OpensTheSettingsOfARowAndLeavesItsTick) {
    for (const WantedRow& row : kWanted) {
        if (row.settings == 0) continue;
        for (const bool isOn : {false, true}) {
            options_.*row.option = isOn;
            FakeModules::ForgetCalls();
            std::wstring window;
            Show([&](const OpenDialog& dialog) {
                window = NumberOf(dialog.window);
                dialog.Press(row.settings);
                EXPECT_EQ(isOn ? Ids{row.box} : Ids(), dialog.Checked(kBoxes)) << row.id;
            });
            EXPECT_EQ(isOn, options_.*row.option) << row.id;
            EXPECT_EQ((Lines{L"ShowProviderOptions(manager, " + std::to_wstring(row.id) +
                             L", 4, null, " + window + L")"}),
                      SettingsCalls());
        }
        options_.*row.option = false;
    }
}

// All are disabled then, but a program may still send what a press would.
TEST_F(TransformRows, TakesATickBackAndOpensNothingWithoutAManager) {
    const auto manager = options_.ProviderManager;
    options_.ProviderManager = nullptr;
    Show([&](const OpenDialog& dialog) {
        for (const WantedRow& row : kWanted) {
            SendMessageW(dialog.Item(row.box), BM_SETCHECK, BST_CHECKED, 0);
            ASSERT_EQ(Ids{row.box}, dialog.Checked(kBoxes));
            dialog.Notify(row.box, BN_CLICKED);
            EXPECT_EQ(Ids(), dialog.Checked(kBoxes)) << row.id;
            EXPECT_FALSE(options_.*row.option) << row.id;
            if (row.settings != 0) dialog.Notify(row.settings, BN_CLICKED);
        }
    });
    EXPECT_EQ(Lines(), FakeModules::Calls());
    options_.ProviderManager = manager;
}

TEST_F(TransformRows, CountsNoOtherIdAsItsOwn) {
    for (const int id : {0, 1, 8, 1000, 1053}) {
        EXPECT_FALSE(obcore::OnTransformCommand(nullptr, id, options_)) << id;
    }
    EXPECT_EQ(Lines(), FakeModules::Calls());
}

TEST_F(TransformRows, SavesNothing) {
    Show([](const OpenDialog& dialog) {
        dialog.Press(1017);
        dialog.Press(1018);
        dialog.Press(8);
    });
    EXPECT_TRUE(options_.AutoResizeImages);
    EXPECT_EQ(std::nullopt, obtest::ReadUserValue(L"AutoResizeImages"));
}

} // namespace

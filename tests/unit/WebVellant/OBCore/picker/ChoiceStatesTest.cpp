#include <gtest/gtest.h>

#include "OBCore/picker/PickerControls.h"

namespace {

using obcore::AdminSendItemKind;
using obcore::OBOptions;

constexpr CDCONTROLSTATEF kOn = CDCS_ENABLEDVISIBLE;
constexpr CDCONTROLSTATEF kOff = CDCS_VISIBLE;

struct Row {
    const char* name;
    void (*set)(OBOptions&);
    CDCONTROLSTATEF zip;
    CDCONTROLSTATEF zipAndEncrypt;
    CDCONTROLSTATEF noZip;
};

// Each row starts from: SendItem on, AutoEncrypt off, encryption possible, no policy.
const Row kRows[] = {
    {"no policy", [](OBOptions&) {}, kOn, kOn, kOn},
    {"nothing chosen", [](OBOptions& o) { o.SendItem = false; }, kOn, kOn, kOn},
    {"compulsory encryption", [](OBOptions& o) { o.AlwaysEncrypt = true; }, kOff, kOn, kOff},
    {"compulsory encryption without encryption",
     [](OBOptions& o) { o.AlwaysEncrypt = o.NoEncryption = true; }, kOff, kOn, kOff},
    {"compulsory encryption without a method",
     [](OBOptions& o) {
         o.AlwaysEncrypt = true;
         o.AllowedEncryptMethods = 0;
     },
     kOff, kOn, kOff},
    {"compulsory encryption, zipping forced off",
     [](OBOptions& o) {
         o.AlwaysEncrypt = true;
         o.AdminSendItem = AdminSendItemKind::ForcedOff;
     },
     kOff, kOn, kOff},
    {"compulsory encryption, nothing chosen and locked",
     [](OBOptions& o) {
         o.AlwaysEncrypt = o.DisableMsgEditZipOption = true;
         o.SendItem = false;
     },
     kOff, kOn, kOff},
    {"no encryption", [](OBOptions& o) { o.NoEncryption = true; }, kOn, kOff, kOn},
    {"no method", [](OBOptions& o) { o.AllowedEncryptMethods = 0; }, kOn, kOff, kOn},
    {"zipping on by default", [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::DefaultOn; },
     kOn, kOn, kOn},
    {"zipping off by default",
     [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::DefaultOff; }, kOn, kOn, kOn},
    {"zipping forced on", [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::ForcedOn; }, kOn,
     kOn, kOff},
    {"zipping forced off", [](OBOptions& o) { o.AdminSendItem = AdminSendItemKind::ForcedOff; },
     kOff, kOff, kOn},
    {"locked with zip", [](OBOptions& o) { o.DisableMsgEditZipOption = true; }, kOn, kOn, kOff},
    {"locked with encryption",
     [](OBOptions& o) {
         o.DisableMsgEditZipOption = o.AutoEncrypt = true;
         o.SendItem = false;
     },
     kOn, kOn, kOff},
    {"locked without either",
     [](OBOptions& o) {
         o.DisableMsgEditZipOption = true;
         o.SendItem = false;
     },
     kOff, kOff, kOn},
};

TEST(PickerChoiceStates, FollowPoliciesAndOptions) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        OBOptions options;
        options.AllowedEncryptMethods = 4;
        row.set(options);
        const obcore::ChoiceStates states = obcore::ComputeChoiceStates(options);
        EXPECT_EQ(states.zip, row.zip);
        EXPECT_EQ(states.zipAndEncrypt, row.zipAndEncrypt);
        EXPECT_EQ(states.noZip, row.noZip);
    }
}

// The three rules in the words of the product, condition by condition.
CDCONTROLSTATEF ZipRule(const OBOptions& o) {
    if (o.AlwaysEncrypt) return kOff;
    if (o.AdminSendItem == AdminSendItemKind::ForcedOff) return kOff;
    if (o.SendItem || o.AutoEncrypt) return kOn;
    return o.DisableMsgEditZipOption ? kOff : kOn;
}

CDCONTROLSTATEF EncryptRule(const OBOptions& o) {
    if (o.AlwaysEncrypt) return kOn;
    if (o.NoEncryption) return kOff;
    if (o.AllowedEncryptMethods == 0) return kOff;
    if (o.AdminSendItem == AdminSendItemKind::ForcedOff) return kOff;
    if (!o.SendItem && !o.AutoEncrypt && o.DisableMsgEditZipOption) return kOff;
    return kOn;
}

CDCONTROLSTATEF NoZipRule(const OBOptions& o) {
    if (o.AlwaysEncrypt) return kOff;
    if (o.AdminSendItem == AdminSendItemKind::ForcedOn) return kOff;
    if (o.DisableMsgEditZipOption && (o.SendItem || o.AutoEncrypt)) return kOff;
    return kOn;
}

TEST(PickerChoiceStates, FollowTheRulesInEveryCombination) {
    for (unsigned bits = 0; bits < 64; ++bits) {
        for (std::uint32_t admin = 0; admin <= 4; ++admin) {
            OBOptions options;
            options.AlwaysEncrypt = bits & 1;
            options.NoEncryption = bits & 2;
            options.AllowedEncryptMethods = bits & 4;
            options.SendItem = bits & 8;
            options.AutoEncrypt = bits & 16;
            options.DisableMsgEditZipOption = bits & 32;
            options.AdminSendItem = static_cast<AdminSendItemKind>(admin);
            const obcore::ChoiceStates states = obcore::ComputeChoiceStates(options);
            EXPECT_EQ(states.zip, ZipRule(options)) << bits << " " << admin;
            EXPECT_EQ(states.zipAndEncrypt, EncryptRule(options)) << bits << " " << admin;
            EXPECT_EQ(states.noZip, NoZipRule(options)) << bits << " " << admin;
        }
    }
}

} // namespace

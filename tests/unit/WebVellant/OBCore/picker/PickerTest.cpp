#include "tests/unit/WebVellant/OBCore/picker/PickerTest.h"

#include <algorithm>

#include "OBCore/modules/ProviderManager.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/picker/PickerControls.h"
#include "tests/standins/Recording.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/StandIns.h"
#include "tests/unit/WebVellant/OBCore/picker/PlanningDouble.h"

namespace obtest {

PickerTest::Com::Com() { CoInitialize(nullptr); }
PickerTest::Com::~Com() { CoUninitialize(); }

PickerTest::PickerTest() {
    StandIns::Reset();
    ClearProductRegistry();
    PlanningDouble::Reset();
    // Here and not in SetUp: members of the fixtures below make a manager.
    bound_ = obcore::LoadArchiveService() && obcore::LoadProviderManager() &&
             obcore::BindResourceModule();
}

PickerTest::~PickerTest() = default;

void PickerTest::SetUp() { ASSERT_TRUE(bound_); }

void PickerTest::Support(obcore::TransformId transform) {
    StandIns::Answer(L"IsProviderSupport." +
                         std::to_wstring(static_cast<std::uint32_t>(transform)) + L".4",
                     L"1");
}

void PickerTest::SupportAll() {
    for (const obcore::TransformControl& row : obcore::TransformControls()) Support(row.transform);
}

void PickerTest::Initialise(obcore::OBAttachJob& job) {
    obcore::ProviderManager().Init(job.OwnedProviderManager, 0, obcore::kProviderManagerKey);
    job.AllowedEncryptMethods = obcore::kEncryptionMethodAes128;
    StandIns::ForgetCalls();
}

std::wstring PickerTest::Text(UINT id) {
    std::wstring text = obcore::LoadText(obcore::TextId{id}, 2048);
    EXPECT_FALSE(text.empty()) << id;
    return text;
}

std::wstring PickerTest::QuotedText(UINT id) { return Quoted(Text(id).c_str()); }

bool PickerTest::WasCalled(const std::wstring& start) {
    const Calls calls = StandIns::Calls();
    return std::ranges::any_of(calls,
                               [&](const std::wstring& call) { return call.starts_with(start); });
}

void PickerTest::ExpectOrder(const Calls& starts) {
    const Calls calls = StandIns::Calls();
    auto from = calls.begin();
    for (const std::wstring& start : starts) {
        const auto found = std::find_if(
            from, calls.end(), [&](const std::wstring& call) { return call.starts_with(start); });
        if (found == calls.end()) {
            ADD_FAILURE() << testing::PrintToString(start) << " doesn't come where it should in "
                          << testing::PrintToString(calls);
            return;
        }
        from = found + 1;
    }
}

} // namespace obtest

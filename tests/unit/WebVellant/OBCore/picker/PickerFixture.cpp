#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

#include <algorithm>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/picker/PickerControls.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"

namespace obtest {

PickerTest::Com::Com() { CoInitialize(nullptr); }
PickerTest::Com::~Com() { CoUninitialize(); }

PickerTest::PickerTest() {
    FakeModules::Reset();
    ClearProductRegistry();
    FakePlanning::Reset();
    // Here and not in SetUp: members of the fixtures below make a manager.
    bound_ = obcore::LoadArchiveService() && obcore::LoadProviderManager() &&
             obcore::BindResourceModule();
}

PickerTest::~PickerTest() = default;

void PickerTest::SetUp() { ASSERT_TRUE(bound_); }

void PickerTest::Support(obcontract::TransformId transform) {
    FakeModules::Answer(L"IsProviderSupport." +
                            std::to_wstring(static_cast<std::uint32_t>(transform)) + L".4",
                        L"1");
}

void PickerTest::SupportAll() {
    for (const obcore::TransformControl& row : obcore::TransformControls()) Support(row.transform);
}

void PickerTest::Initialise(obcore::OBAttachJob& job) {
    obcore::ProviderManager().Init(job.OwnedProviderManager, 0, obcontract::kProviderManagerKey);
    job.AllowedEncryptMethods = obcontract::kEncryptionMethodAes128;
    FakeModules::ForgetCalls();
}

std::wstring PickerTest::Text(UINT id) {
    std::wstring text = obcore::LoadText(obcore::TextId{id}, 2048);
    EXPECT_FALSE(text.empty()) << id;
    return text;
}

std::wstring PickerTest::QuotedText(UINT id) { return Quoted(Text(id).c_str()); }

bool PickerTest::WasCalled(const std::wstring& start) {
    const Calls calls = FakeModules::Calls();
    return std::ranges::any_of(calls,
                               [&](const std::wstring& call) { return call.starts_with(start); });
}

void PickerTest::ExpectOrder(const Calls& starts) {
    const Calls calls = FakeModules::Calls();
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

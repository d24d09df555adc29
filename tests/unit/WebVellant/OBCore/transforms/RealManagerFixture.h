// A run with the real provider manager and its work process.
#pragma once

#include "contracts/ProviderManager.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace obtest {

class RealManagerFixture : public RunFixture {
protected:
    void SetUp() override {
        RunFixture::SetUp();
        ClearProductRegistry();
        Begin();
    }
    void TearDown() override {
        obcore::ProviderManager().Deinit(job_.OwnedProviderManager);
        RunFixture::TearDown();
    }

    // A manager serves one run, so each run of a test begins anew.
    void Begin() {
        obcore::ProviderManager().Init(job_.OwnedProviderManager, kCurrentUser,
                                       obcontract::kProviderManagerKey);
    }

    static constexpr auto kCurrentUser =
        static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
};

} // namespace obtest

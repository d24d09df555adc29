// What the suites of the options share: an empty registry, silent fakes, both modules bound.
#pragma once

#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/options/OBOptions.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"

class OptionsFixture : public testing::Test {
protected:
    void SetUp() override {
        obtest::ClearProductRegistry();
        obtest::FakeModules::Reset();
        ASSERT_TRUE(obcore::LoadArchiveService());
        ASSERT_TRUE(obcore::LoadProviderManager());
    }

    static obcore::OBOptions Loaded(obcontract::ProviderManagerHandle manager = nullptr) {
        obcore::OBOptions options;
        options.ProviderManager = manager;
        options.Load();
        return options;
    }
};

// A manager of the fake module, initialised.
class TestManager {
public:
    TestManager() : handle_(obcore::ProviderManager().CreateObExtensionsManager()) {
        const auto hive = reinterpret_cast<std::int64_t>(HKEY_CURRENT_USER);
        obcore::ProviderManager().Init(handle_, hive, obcontract::kProviderManagerKey);
    }
    ~TestManager() { obcore::ProviderManager().DeleteObExtensionsManager(handle_); }
    TestManager(const TestManager&) = delete;
    TestManager& operator=(const TestManager&) = delete;

    obcontract::ProviderManagerHandle Get() const { return handle_; }

private:
    obcontract::ProviderManagerHandle handle_;
};

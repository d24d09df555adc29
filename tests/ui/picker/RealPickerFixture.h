// Requests in the shell's real dialog, which a UI driver operates on a second thread.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

#include "OBCore/exchange/ExchangeRequest.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "OBCore/picker/Drivers.h"
#include "tests/support/FakeModules.h"
#include "tests/support/PickerUiDriver.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/WebVellant/OBCore/picker/FakePlanning.h"

namespace obtest {

class RealPickerFixture : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        ClearProductRegistry();
        FakePlanning::Reset();
        CoInitialize(nullptr);
        ASSERT_TRUE(obcore::LoadArchiveService());
        ASSERT_TRUE(obcore::LoadProviderManager());
        ASSERT_TRUE(obcore::BindResourceModule());
    }
    void TearDown() override { CoUninitialize(); }

    HRESULT RunDialog(DWORD options, std::function<void(OpenPicker&)> use) {
        *block = obcontract::ExchangeBlock{};
        block->Status = obcontract::ExchangeStatus::DialogRequest;
        block->DialogOptions = options;
        PickerUiDriver driver(std::move(use));
        const HRESULT result = obcore::DialogDriver(nullptr, *block);
        EXPECT_TRUE(driver.Done()) << "no picker came, or it didn't close";
        return result;
    }

    BOOL RunOpenFileName(DWORD flags, std::function<void(OpenPicker&)> use) {
        OPENFILENAMEW page{};
        page.lStructSize = sizeof(page);
        page.nMaxFile = 4096;
        page.Flags = flags;
        page.lpstrFilter = L"All\0*.*\0";
        *block = obcontract::ExchangeBlock{};
        obcore::WriteOpenFileNameRequest(*block, page);
        block->Status = obcontract::ExchangeStatus::OpenFileNameTaken;
        OPENFILENAMEW request = obcore::ReadOpenFileNameRequest(*block, nullptr);
        PickerUiDriver driver(std::move(use));
        const BOOL result = obcore::OpenFileNameDriver(&request, *block);
        EXPECT_TRUE(driver.Done()) << "no picker came, or it didn't close";
        return result;
    }

    std::unique_ptr<obcontract::ExchangeBlock> block =
        std::make_unique<obcontract::ExchangeBlock>();
};

} // namespace obtest

// The fixture of the picker's tests: an empty registry, fresh fake modules, a fake in place of the
// shell's dialog, all modules bound.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"
#include "tests/support/RecordingFileDialog.h"

namespace obtest {

using Calls = std::vector<std::wstring>;

class PickerTest : public testing::Test {
protected:
    PickerTest();
    ~PickerTest() override;
    void SetUp() override;

    // From now on the provider manager supports this transform, or all of them.
    static void Support(obcontract::TransformId transform);
    static void SupportAll();

    // The record of a run in which nothing is loaded, with an initialised manager.
    static void Initialise(obcore::OBAttachJob& job);

    // A text of the product, which must be there, as it is or in quotes as calls show it.
    static std::wstring Text(UINT id);
    static std::wstring QuotedText(UINT id);

    // Whether there was a call that begins so.
    static bool WasCalled(const std::wstring& start);

    // Expects calls that begin so to have come in this order.
    static void ExpectOrder(const Calls& starts);

private:
    struct Com {
        Com();
        ~Com();
    } com_; // before the fake dialog, which is registered with COM
    bool bound_ = false;

protected:
    FakeFileDialog shell;
};

} // namespace obtest

// Fakes of what the planning calls besides the sister modules: transforms, chooser and upload.
// Each writes its call down among those of the fakes, then does what the test has set.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"

namespace obtest {

struct FakePipeline {
    using Files = std::vector<std::wstring>;

    std::function<bool(obcore::OBAttachJob&, Files&)> runTransforms;
    std::function<bool(obcore::OBAttachJob&)> transformSingleFile;
    std::function<bool(obcore::OBAttachJob&)> chooseProvider;
    std::function<bool(obcore::OBAttachJob&, std::wstring&)> send;

    // Transforms that go on, a dialog that is closed without a choice, an upload that yields a
    // link.
    void Reset();
};

FakePipeline& TheFakePipeline();

} // namespace obtest

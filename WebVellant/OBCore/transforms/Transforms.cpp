#include "OBCore/transforms/Transforms.h"

#include "OBCore/modules/ObTrace.h"
#include "OBCore/options/TransformTable.h"

namespace obcore::CompressUtils {

// This build carries out no transforms yet. A run that asks for one stops here, before a file or
// the manager's selection is touched, so that nothing goes out as if it had been changed. The
// stages and their progress dialog take the place of the trace.
bool RunTransforms(OBAttachJob& job, std::vector<std::wstring>& files, const std::wstring& folder) {
    if (!WantsTransforms(job)) return true;
    ObTrace("RunTransforms: %d files in %S can't be changed", static_cast<int>(files.size()),
            folder.c_str());
    return false;
}

// Only called for a file that is to be changed, so the run stops before a copy is made.
bool TransformSingleFile(OBAttachJob&, const std::vector<std::wstring>& files) {
    ObTrace("TransformSingleFile: %d files can't be changed", static_cast<int>(files.size()));
    return false;
}

} // namespace obcore::CompressUtils

#include "OBCore/transforms/TransformSelection.h"

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/TransformTable.h"

using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::TransformId;

namespace obcore {
namespace {

void Select(ProviderManagerHandle manager, std::uint32_t mode, TransformId id) {
    ProviderManager().SelectProviders(manager, mode, static_cast<std::uint32_t>(id),
                                      ProviderKind::Transform);
}

} // namespace

void SelectWantedTransforms(const OBAttachJob& job) {
    for (const TransformRow& row : kTransforms) {
        if (job.*row.option) Select(job.OwnedProviderManager, obcontract::kSelectUse, row.id);
    }
}

bool IsAnyTransformSelected(ProviderManagerHandle manager) {
    return ProviderManager().IsProviderTypeSelected(manager, ProviderKind::Transform) != 0;
}

void LeaveOutConvertFromPdf(ProviderManagerHandle manager) {
    Select(manager, obcontract::kSelectLeaveOut, TransformId::ConvertFromPdf);
}

} // namespace obcore

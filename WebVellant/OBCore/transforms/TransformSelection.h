// Which transforms the provider manager runs: the selection is in the manager and lasts from tick
// to run.
#pragma once

#include "OBCore/options/OBAttachJob.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Selects the provider of each transform that the options name, in the order of the table. Earlier
// selections, such as those of ticks in the picker, stay. A refusal of the manager is ignored.
void SelectWantedTransforms(const OBAttachJob& job);

// Whether the manager has any transform selected.
bool IsAnyTransformSelected(obcontract::ProviderManagerHandle manager);

// Takes the conversion of PDF files into documents out of the selection.
void LeaveOutConvertFromPdf(obcontract::ProviderManagerHandle manager);

} // namespace obcore

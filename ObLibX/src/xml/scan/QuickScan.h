// The quick way through a text: whole runs are passed over where the rules of NodeRules.h wait for
// a few units only. For TagScanner.
#pragma once

#include "ObLibX/src/xml/scan/ScannerState.h"

namespace ObLibX {

// One step, with the same outcome as NodeRules; true when it was made. Left to the rules, with
// nothing changed, are document types, everything with an error in it, and what the end of the
// buffer cuts off. Allocates nothing.
bool QuickNode(ScannerState& scanner, NodeScan& scan);

} // namespace ObLibX

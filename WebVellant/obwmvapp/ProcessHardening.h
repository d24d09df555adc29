// What the host process switches on for itself before anything else runs in it.
#pragma once

namespace obwmvapp {

// From here on the process ends at once when its heap is damaged, and modules that are asked for
// without a path are searched for in the system's folder first and then in the program's: never in
// the current folder, which a file dialog changes to wherever the user looks, and never on the
// search path. Modules that are asked for by their full path load as before.
//
// Called first on the main thread. A step that the system refuses is left out.
void HardenProcess() noexcept;

} // namespace obwmvapp

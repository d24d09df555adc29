// The container of office programs before packages: which documents in one need a password.
#pragma once

#include "services/transforms/personal/Bytes.h"

namespace transforms::documents {

// The container begins as one, see IsOldContainer. Looks at the first bytes of the streams that
// texts, tables and slides have, by their names; a damaged container needs none. A document that
// was protected with the program's own standard password counts as well.
bool NeedsPassword(personal::Bytes container);

} // namespace transforms::documents

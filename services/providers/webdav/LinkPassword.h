// Passwords for links, made by this computer.
#pragma once

#include <optional>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/dav/ShareReply.h"

namespace providers {

// A random password that a person can type: groups of four letters and digits that can't be taken
// for one another, with hyphens between; with a small letter, a capital and a digit in the first
// group. At least four groups (more than 90 random bits), unless the server takes less. Nothing
// when the system has no random numbers, or the server takes fewer than eight characters. Any
// thread.
std::optional<ObLib::Secret> NewLinkPassword(const ShareRules& rules);

// Whether links get a password by the administrator's decision: RequireLinkPassword.
bool IsLinkPasswordPolicyOn();

} // namespace providers

// What the user reads when a server can't be used.
#pragma once

#include <string>

#include "services/providers/dav/DavStatus.h"

namespace providers {

// Whole sentences: what happened at this server, and what to do. Empty for a cancel.
std::wstring DavSentence(const DavError& error, const HttpOrigin& server);

// The same for a file that wasn't uploaded because of it.
std::wstring DavUploadSentence(const DavError& error, const HttpOrigin& server,
                               const std::wstring& fileName);

} // namespace providers

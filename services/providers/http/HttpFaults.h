// What the error codes of the system's HTTP client mean.
#pragma once

#include <windows.h>

#include "services/providers/http/HttpTypes.h"

namespace providers {

// `certificateFlags`: what the client has reported of a certificate that it refused
// (WINHTTP_CALLBACK_STATUS_FLAG_...), 0 when it reported nothing.
HttpError HttpErrorFor(DWORD code, DWORD certificateFlags) noexcept;

} // namespace providers

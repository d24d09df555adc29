// The owner of a zip context of the archive service.
#pragma once

#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

struct ZipContextPolicy {
    using Handle = obcontract::ZipContext;
    static Handle Empty() noexcept { return 0; }
    static Handle Normalized(Handle context) noexcept { return context; }
    static void Close(Handle context) noexcept { ArchiveService().DestroyZipContext(context); }
};

// Ends the context when it goes, on every way out; Release() leaves it alive. Lives on the picker's
// dialog thread, as every call with a context does.
using UniqueZipContext = ObLib::UniqueResource<ZipContextPolicy>;

} // namespace obcore

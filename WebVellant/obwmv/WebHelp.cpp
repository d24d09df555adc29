#include "obwmv/WebHelp.h"

#include "OBCore/modules/ServiceLibrary.h"

namespace obwmv {

bool ShowWebHelp(HWND owner) {
    constexpr wchar_t kTopic[] = L"Help About Topic";
    if (!obcore::LoadArchiveService()) return false;
    obcore::ArchiveService().WebHelpW(owner, kTopic, kTopic);
    return true;
}

} // namespace obwmv

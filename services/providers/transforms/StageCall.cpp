#include "services/providers/transforms/StageCall.h"

#include "services/providers/ui/Texts.h"

namespace providers {

bool Refuse(StageCall& call, UINT text, const std::wstring& path) {
    if (call.wait.IsEnded()) return false;
    ShowSentence(call.wait.Owner(), FormatOwnText(text, {FileNameOf(path)}));
    return false;
}

} // namespace providers

#include "services/archive/password/PromptHint.h"

#include "services/archive/ThisModule.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "services/archive/texts/FormatMessageText.h"

namespace obarchive {
namespace {

void AddLine(std::wstring& hint, const std::wstring& line) {
    if (!hint.empty()) hint += L"\n";
    hint += line;
}

// Shown while nothing is wrong.
std::wstring Advice(const PromptState& state) {
    if (state.copied) return OwnText(OB_TEXT_COPIED);
    if (state.phraseBits != 0) {
        return FormatMessageText(OB_TEXT_PHRASE, {std::to_wstring(state.phraseBits)});
    }
    if (!state.meetsPolicy) return PolicyHint(state.policy);
    return state.beyondAscii ? OwnText(OB_TEXT_BEYOND_ASCII) : std::wstring();
}

} // namespace

std::wstring HintText(const PromptState& state) {
    std::wstring hint;
    if (state.capsLock) AddLine(hint, OwnText(OB_TEXT_CAPS_LOCK));
    if (state.problem != 0) {
        AddLine(hint, OwnText(state.problem));
    } else if (state.differ) {
        AddLine(hint, OwnText(OB_TEXT_PASSWORDS_DIFFER));
    } else if (const std::wstring advice = Advice(state); !advice.empty()) {
        AddLine(hint, advice);
    }
    return hint;
}

} // namespace obarchive

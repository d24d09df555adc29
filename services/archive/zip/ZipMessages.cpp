#include "services/archive/zip/ZipMessages.h"

#include "services/archive/Paths.h"
#include "services/archive/ThisModule.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/texts/ProductTexts.h"
#include "services/archive/texts/ServiceTextIds.h"

namespace obarchive {
namespace {

// Names may have 255 characters without a blank, which a message box can't break into lines. The
// end stays, as it shows the kind of the file.
std::wstring ShownName(const std::wstring& path) {
    constexpr std::size_t kLongest = 80;
    constexpr std::size_t kHead = 50;
    constexpr std::size_t kTail = 29;
    std::wstring name(FileName(path));
    if (name.size() > kLongest) {
        name = name.substr(0, kHead) + L'\u2026' + name.substr(name.size() - kTail);
    }
    // A cut may have halved a character.
    return WithoutLoneSurrogates(name);
}

// The sentences begin with the name in quotation marks; without a name these go too.
std::wstring WithoutName(UINT text) {
    std::wstring sentence = OwnText(text);
    const std::wstring place = L"\u201C%1\u201D";
    if (const auto at = sentence.find(place); at != std::wstring::npos) {
        sentence.replace(at, place.size(), OwnText(OB_TEXT_SOME_FILE));
    }
    return sentence;
}

} // namespace

std::wstring FailureSentence(ZipResult result, const std::wstring& failedFile) {
    if (result == ZipResult::Ok || result == ZipResult::Cancelled) return {};
    const UINT text = OB_TEXT_ZIP_FAILED + static_cast<UINT>(result);
    const std::wstring name = ShownName(failedFile);
    return name.empty() ? WithoutName(text) : FormatMessageText(text, {name});
}

void TellFailure(HWND owner, ZipResult result, const std::wstring& failedFile) {
    const std::wstring sentence = FailureSentence(result, failedFile);
    if (sentence.empty()) return;
    MessageBoxW(IsWindow(owner) ? owner : nullptr, sentence.c_str(), kProductCaption,
                MB_OK | MB_ICONEXCLAMATION);
}

} // namespace obarchive

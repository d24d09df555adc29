#include "services/providers/webdav/PickedLinks.h"

#include <algorithm>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/Event.h"

namespace providers {
namespace {

void Wipe(std::wstring& text) { SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t)); }

std::wstring KeyOf(const DavPickAccount& account, const DavItem& item) {
    return account.account.key + L' ' + FromUtf8(HttpUrlText(item.url)).value_or(item.name);
}

// The selection without links: the least that its text needs.
std::vector<PickedFile> NamesOf(const DavPickAccount& account, std::span<const PickerRow> chosen) {
    std::vector<PickedFile> files;
    for (const PickerRow& row : chosen) files.push_back({account.account, row.name, {}});
    return files;
}

LinkedFiles Refused(std::wstring sentence) {
    LinkedFiles refused;
    refused.sentence = std::move(sentence);
    return refused;
}

} // namespace

LinkedFiles::~LinkedFiles() {
    for (std::wstring& password : passwords) Wipe(password);
}

// Why the file, or all of them together, aren't taken; empty when they are.
std::wstring PickedLinks::Refusal(const PickedFile& file, std::span<const PickedFile> files) const {
    const bool isLong =
        EscapedLink(file.link).size() > kLongestLink || !FitsLinkText({&file, 1}, displayName_);
    if (isLong) return FormatOwnText(OB_TEXT_FOLDER_PICK_LONG, {file.name});
    return FitsLinkText(files, displayName_) ? std::wstring() : OwnText(OB_TEXT_PICK_TOO_MANY);
}

// The file's link, made now if it isn't there yet. Null with the reason when there is none.
const ShareResult* PickedLinks::Made(const DavPickAccount& account, const PickerRow& row,
                                     HANDLE cancelled, LinkedFiles& refused) {
    const std::wstring key = KeyOf(account, row.item);
    if (const auto known = made_.find(key); known != made_.end()) return &known->second.result;
    ShareResult result;
    // An exception leaves the result as it is: not shared, without a sentence.
    ObLib::RanGuarded([&] { result = account.share(row.item, cancelled); });
    if (result.isShared && !result.link.empty()) {
        return &made_.emplace(key, MadeLink{std::move(result), account.end}).first->second.result;
    }
    if (IsSet(cancelled)) return nullptr;
    const bool hasReason = !result.isShared && !result.sentence.empty();
    refused.needsLogin = result.needsLogin;
    refused.sentence =
        FormatOwnText(OB_TEXT_DAVPICK_NOT_LINKED,
                      {row.name, hasReason ? result.sentence : OwnText(OB_TEXT_SHARE_NO_LINK)});
    return nullptr;
}

LinkedFiles PickedLinks::Make(const DavPickAccount& account, std::span<const PickerRow> chosen,
                              HANDLE cancelled, const std::function<void(std::size_t)>& begins) {
    std::vector<PickedFile> files = NamesOf(account, chosen);
    if (!FitsLinkText(files, displayName_)) {
        for (const PickedFile& file : files) {
            if (std::wstring why = Refusal(file, {&file, 1}); !why.empty())
                return Refused(std::move(why));
        }
        return Refused(OwnText(OB_TEXT_PICK_TOO_MANY));
    }
    const std::lock_guard lock(turn_);
    LinkedFiles linked;
    linked.passwords.reserve(files.size()); // so that no copy is left in a smaller block
    for (std::size_t index = 0; index < chosen.size(); ++index) {
        if (IsSet(cancelled)) return {};
        begins(index);
        LinkedFiles refused;
        const ShareResult* const result = Made(account, chosen[index], cancelled, refused);
        if (!result) return refused;
        files[index].link = result->link;
        linked.passwords.push_back(result->password);
        // What doesn't fit already needs no more links.
        if (std::wstring why = Refusal(files[index], files); !why.empty())
            return Refused(std::move(why));
    }
    linked.files = std::move(files);
    return linked;
}

void PickedLinks::EndAllBut(std::span<const PickedFile> files) {
    const std::lock_guard lock(turn_);
    for (const auto& [key, made] : made_) {
        const bool isGiven = std::ranges::any_of(
            files, [&](const PickedFile& file) { return file.link == made.result.link; });
        if (!isGiven && made.end) ObLib::RanGuarded([&] { made.end(made.result); });
    }
    made_.clear();
}

} // namespace providers

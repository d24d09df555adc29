// Links to the files that the user picks on a server, and their passwords.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "services/providers/webdav/DavPickAccount.h"
#include "services/providers/webdav/PickerRows.h"

namespace providers {

// What became of one selection.
struct LinkedFiles {
    std::vector<PickedFile> files; // all of the selection, or none
    // Of the files, in their order; empty for a link without one.
    std::vector<std::wstring> passwords;
    // Why there are none: what happened, and what to do. Empty after a cancel.
    std::wstring sentence;
    bool needsLogin = false; // there are none because the account's login no longer counts

    LinkedFiles() = default;
    LinkedFiles(LinkedFiles&&) = default;
    LinkedFiles& operator=(LinkedFiles&&) = default;
    ~LinkedFiles(); // wipes the passwords
};

// Remembers each link that was made while the picker is open, so that none is made twice when the
// first selection isn't taken, and the links that nobody gets are ended. Shared by the threads that
// make and end links, which may outlive the picker.
class PickedLinks {
public:
    explicit PickedLinks(std::wstring displayName) : displayName_(std::move(displayName)) {}
    PickedLinks(const PickedLinks&) = delete;
    PickedLinks& operator=(const PickedLinks&) = delete;

    // Makes the links that are still missing, one after the other, and stops at the first failure
    // or once the links can't fit the text for the mail any more; what was made stays as it is on
    // the server until EndAllBut. `begins` gets the index of each file whose turn it is. A second
    // call waits for the end of the first.
    LinkedFiles Make(const DavPickAccount& account, std::span<const PickerRow> chosen,
                     HANDLE cancelled, const std::function<void(std::size_t)>& begins);

    // Ends each link on its server but those of these files. Waits for a Make that still runs,
    // whose link may come late.
    void EndAllBut(std::span<const PickedFile> files);

private:
    struct MadeLink {
        ShareResult result;
        std::function<void(const ShareResult&)> end;
    };

    std::wstring Refusal(const PickedFile& file, std::span<const PickedFile> files) const;
    const ShareResult* Made(const DavPickAccount& account, const PickerRow& row, HANDLE cancelled,
                            LinkedFiles& refused);

    const std::wstring displayName_;
    std::mutex turn_;                            // of the members below
    std::map<std::wstring, MadeLink> made_ = {}; // by account and address
};

} // namespace providers

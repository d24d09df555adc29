// Uploads to one account of a WebDAV server, and what else happens to its files.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "services/providers/dav/DavClient.h"
#include "services/providers/storage/PartNotes.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// The folder of an account and the login for it.
struct DavAccess {
    HttpUrl root;
    HttpLogin login;
};

// Asks for a password in place of one that no longer counts, with a window that is the owner.
// Nothing after a cancel.
using AskForLogin = std::function<std::optional<HttpLogin>(HWND owner)>;

// The steps of an upload: folder, bytes to a name of its own, length, move to the wanted name,
// which replaces nothing. Remembers a file that is on the server whole under its own name because
// the wanted one was taken meanwhile: the next upload of that file only moves it. One at a time, on
// any thread.
class DavUpload {
public:
    // Where what is under a name of the upload's own is noted, so that a later session removes what
    // a process that was killed has left.
    struct Notes {
        PartNotes book;
        std::wstring accountKey;
        DWORD renewal = 3'600'000; // milliseconds; much less than kOldPart
    };

    // `session` outlives the object.
    explicit DavUpload(const HttpSession& session, const DavPatience& patience = {},
                       std::optional<Notes> notes = {});

    // As StorageProvider::Upload. A cancel that comes once the file has got its name is too late:
    // Done. `ask` may be empty: then a password that doesn't count ends the upload. After any end
    // but Done and NameTaken nothing of the file stays on a server that can be reached. A server
    // may store late what it got before: then the note stays, too.
    UploadResult Run(DavAccess access, const UploadFile& file, UploadProgress& progress,
                     const AskForLogin& ask);

private:
    // A file of this machine as it was when its upload began.
    struct Source {
        std::uint64_t file = 0; // the file's number on its volume
        DWORD volume = 0;
        std::uint64_t size = 0; // bytes
        std::uint64_t written = 0;
        bool operator==(const Source&) const = default;
    };
    struct Unfinished {
        Source source;
        HttpUrl url;
    };

    static std::optional<Source> SourceOf(HANDLE file);
    void Begin(const DavAccess& access, const Source& source);
    DavResult<StoredFile> Try(const DavAccess& access, const UploadFile& file, HANDLE source,
                              UploadProgress& progress);
    DavResult<HttpUrl> Folder(const DavClient& client, const DavAccess& access,
                              const UploadFile& file) const;
    StoredFile Stored(const DavClient& client, const HttpUrl& target, const std::wstring& name,
                      std::uint64_t size) const;
    std::optional<StoredFile> StoredAfterAll(const DavAccess& access, const std::wstring& name);
    void Note();
    void RenewNote();
    void Discard(const DavAccess& access);
    void Forget();

    const HttpSession& session_;
    DavPatience patience_;
    std::optional<Notes> notes_; // outlive the note
    std::optional<Unfinished> unfinished_;
    std::optional<PartNote> note_;  // of the unfinished file
    ULONGLONG noted_ = 0;           // when, as GetTickCount64 counts
    bool mayBeStored_ = false;      // a part of the unfinished file
    bool mayComeLate_ = false;      // bytes whose request got no reply
    std::optional<HttpUrl> moving_; // where to, while nobody knows whether it is there
};

// The names, in UTF-8, that backslashes separate.
std::vector<std::string> PartsOf(const std::wstring& folder);

// Whether an upload gives names of this form to files that aren't whole yet.
bool IsPartName(std::string_view name);

// In the next three `failure`, which may be null, gets why the server couldn't be asked.

// Nothing when it can't be asked.
std::optional<AccountSpace> DavSpace(const DavClient& client, const HttpUrl& root,
                                     DavError* failure = nullptr);

// Deletes a file below the account's folder if it is unchanged.
DeletionEnd DeleteDavFile(const DavClient& client, const HttpUrl& root, const StoredFile& file,
                          DavError* failure = nullptr);

// Deletes what an upload has left under a name of its own; `path` is that of its note.
DeletionEnd RemoveDavPart(const DavClient& client, const HttpUrl& root, const std::wstring& path,
                          DavError* failure = nullptr);

} // namespace providers

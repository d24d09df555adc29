// WebDAV requests to one account. Each is asked again after a break only where that can't do harm:
// what changes something is looked up first.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "services/providers/dav/DavStatus.h"
#include "services/providers/http/HttpSession.h"

namespace providers {

// How often and how long is waited before a request is given up. In tests: not long.
struct DavPatience {
    int breaks = 5;             // in a row, without a byte more on the server
    DWORD pause = 1'000;        // milliseconds after a break, doubled with each
    int waits = 3;              // that the server asks for
    DWORD longestWait = 60'000; // milliseconds of one of them; a longer one ends the request
    DWORD question = 10'000;    // milliseconds of a step of a request that can be done without
    DWORD clearing = 10'000;    // milliseconds of all requests that clear up after an end
    int looks = 4;              // more for a step that the server may do late, each after a pause
};

// A file or folder of the server.
struct DavItem {
    HttpUrl url;
    std::wstring name; // decoded; empty for the folder that was asked about
    bool isFolder = false;
    std::optional<std::uint64_t> size; // bytes
    std::string version;               // its entity tag without the mark of a weak one; empty: none
    bool isWeak = false;               // the entity tag is a weak one
    std::optional<std::uint64_t> freeBytes;
    std::optional<std::uint64_t> usedBytes;
};

enum class DavDeletion { Gone, Changed };

class DavClient {
public:
    // All of them outlive the client. `cancelled`: an event; null: none.
    DavClient(const HttpSession& session, const HttpLogin& login, HANDLE cancelled,
              const DavPatience& patience = {});

    // A file or folder; a folder's address may be without its last slash.
    DavResult<DavItem> Look(const HttpUrl& url) const;
    // What is in a folder, without the folder itself.
    DavResult<std::vector<DavItem>> List(const HttpUrl& folder) const;

    // Makes a folder below `root`, with those above it; its parts are UTF-8 names. One that is
    // there is fine.
    DavResult<HttpUrl> MakeFolders(const HttpUrl& root,
                                   const std::vector<std::string>& parts) const;

    // Gives a file another name and replaces nothing: Taken when there is something of this name. A
    // move whose reply is lost is looked up, for some time where the server may act late, and so is
    // one that is refused because its name is taken or the file is missing, as it may be by this
    // move; `size` is that of the file.
    std::optional<DavError> Move(const HttpUrl& from, const HttpUrl& to, std::uint64_t size) const;

    // Whether a move of a file of this size has happened: its old name is gone, the new one there.
    DavResult<bool> HasMoved(const HttpUrl& from, const HttpUrl& to, std::uint64_t size) const;

    // Deletes a file whose version is still this one.
    DavResult<DavDeletion> Delete(const HttpUrl& url, const std::string& version) const;
    // Deletes what this client has stored itself, whatever its version.
    std::optional<DavError> Discard(const HttpUrl& url) const;

    // Whether parts of a file can be sent by PATCH (sabredav-partialupdate).
    DavResult<bool> CanPatch(const HttpUrl& url) const;

    // One request; waits where the server asks for it. Any status of success is a reply.
    DavResult<HttpReply> Send(HttpRequest request) const;
    // The same, again after a break: for requests that may be done twice.
    DavResult<HttpReply> Ask(const HttpRequest& request) const;
    // The same two for a reply of any status.
    DavResult<HttpReply> SendForAny(HttpRequest request) const;
    DavResult<HttpReply> AskForAny(const HttpRequest& request) const;
    // Whether a step was done in spite of this failure. A server that may still do it is asked some
    // times, after waits that grow. The result of the last question.
    DavResult<bool> WasDone(const DavError& failure,
                            const std::function<DavResult<bool>()>& isDone) const;
    // Waits so long; the error when it is cancelled meanwhile.
    std::optional<DavError> Pause(DWORD milliseconds) const;

    const DavPatience& Patience() const { return patience_; }

private:
    DavResult<std::vector<DavItem>> Find(const HttpUrl& url, const char* depth) const;
    std::optional<DavError> MakeFolder(const HttpUrl& url) const;

    const HttpSession& session_;
    const HttpLogin& login_;
    HANDLE cancelled_;
    DavPatience patience_;
};

} // namespace providers

// Links to files, made by the server through the open collaboration share interface.
//
// All functions ask the server and wait, on any thread, until the client's event is set.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/dav/DavClient.h"
#include "services/providers/dav/ShareReply.h"

namespace providers {

enum class ShareFault {
    Dav,           // see the DavError
    Off,           // the server doesn't make links
    NeedsPassword, // it makes none without a password
    Refused,       // it makes none for this file, or none as asked for; see `message`
    NoPassword,    // it made one without the password; that one is ended
    OddLink,       // it has made a link that isn't handed out: see IsUsableLink
    Damaged,       // its reply can't be read
};

struct ShareError {
    ShareFault fault = ShareFault::Dav;
    DavError dav;         // with ShareFault::Dav, and the status with Refused
    std::wstring message; // what the server wrote, cleaned and short; may be empty
};

template <class Value>
using ShareOutcome = std::variant<Value, ShareError>;

struct LinkShare {
    std::string id;                // for SetExpiry and Remove
    std::wstring link;             // fits into a CloudItem
    std::optional<ShareDate> ends; // when the server ends it, also by a rule of its own
};

struct ShareWish {
    HttpUrl file; // below the account's root
    // For this link. With needsPassword one that fits the rules is needed.
    const ObLib::Secret* password = nullptr;
    // The link's last day, of which some servers see the beginning as the end. A server that allows
    // fewer days decides; see LinkShare::ends.
    std::optional<ShareDate> expires;
    // What this link is recognised by, and no other one: at most 64 characters of ASCII, kept and
    // used again when the same link is asked for again after a failure. A share with this label is
    // used then, and gets this password.
    std::string label;
    // Nobody else can have shared the file: this run has stored it. Then a share without a label is
    // an earlier try's, as of a server that knows no labels.
    bool isOwnFile = false;
};

// Rules and address of one account's interface; no connection. Copies may be kept.
class ShareApi {
public:
    // The interface of the server that has this WebDAV root; nothing when it has none.
    static ShareOutcome<std::optional<ShareApi>> Find(const DavClient& client,
                                                      const HttpUrl& davRoot);

    const ShareRules& Rules() const { return rules_; }

    // A link of its own for a file. Where a reply is lost or damaged, the share is looked up; there
    // is never a second one.
    ShareOutcome<LinkShare> Make(const DavClient& client, const ShareWish& wish) const;
    // Lets a link end after this day, or earlier if the server's rules want that. The day on which
    // it ends.
    ShareOutcome<ShareDate> SetExpiry(const DavClient& client, const std::string& id,
                                      const ShareDate& last) const;
    // Ends a link. One that is gone is fine.
    std::optional<ShareError> Remove(const DavClient& client, const std::string& id) const;

private:
    ShareApi(HttpUrl base, std::string filesPath, const ShareRules& rules, int clockDays)
        : base_(std::move(base)), filesPath_(std::move(filesPath)), rules_(rules),
          clockDays_(clockDays) {}

    using Shares = std::vector<ShareEntry>;
    std::optional<std::string> PathOf(const HttpUrl& file) const;
    std::optional<ShareError> Refusal(const ShareWish& wish) const;
    std::string ExpiryField(const ShareDate& day) const;
    std::optional<ShareDate> OwnDay(const std::optional<ShareDate>& serversDay) const;
    ShareOutcome<Shares> List(const DavClient& client, const std::string& path) const;
    ShareOutcome<ShareEntry> Create(const DavClient& client, const std::string& path,
                                    const ShareWish& wish) const;
    ShareOutcome<ShareEntry> Change(const DavClient& client, const std::string& id,
                                    std::string_view field, const ObLib::Secret& value) const;
    ShareOutcome<ShareEntry> Renew(const DavClient& client, ShareEntry entry,
                                   const ShareWish& wish) const;
    ShareOutcome<ShareEntry> MakeOnce(const DavClient& client, const std::string& path,
                                      const ShareWish& wish, const Shares& before) const;
    ShareEntry DropOthers(const DavClient& client, const ShareEntry& kept, const Shares& shares,
                          const ShareWish& wish) const;
    ShareOutcome<ShareEntry> Protected(const DavClient& client, const ShareEntry& entry,
                                       const ShareWish& wish) const;
    ShareOutcome<LinkShare> Checked(const DavClient& client, const ShareEntry& entry) const;

    HttpUrl base_;          // that of all shares
    std::string filesPath_; // of the folder that the interface's paths begin at; decoded
    ShareRules rules_;
    int clockDays_ = 0; // how far the server's clock is ahead of this computer's
};

// By this computer's calendar.
ShareDate Today();
ShareDate DaysLater(const ShareDate& date, int days);

// Whether a link can go into a mail: http or https, at any host, as the server may have another
// name for others; by https if the account is; visible ASCII without quotation marks, brackets,
// backslash or pipe; at most as long as CloudItem::link.
bool IsUsableLink(std::string_view link, const HttpOrigin& account);

} // namespace providers

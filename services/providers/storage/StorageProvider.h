// A storage provider: what the part that all of them share asks of each one.
//
// An account is named by its key: a text that this module made (AccountBook), which reveals neither
// server nor user. Texts for the user are whole sentences in the user's language.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"

namespace providers {

struct StorageAccount {
    std::wstring key;
    std::wstring label; // shown for the account; at most 50 characters
};

// In bytes. A provider that isn't told a value gives obcontract::SizeUnknown.
struct AccountSpace {
    std::int64_t freeBytes = obcontract::SizeUnknown;
    std::int64_t totalBytes = obcontract::SizeUnknown;
};

// One file to upload.
struct UploadFile {
    std::wstring localPath;
    std::wstring name;   // in the cloud
    std::wstring folder; // below which it is stored, parts separated by a backslash; may be empty
};

// A file that its account has stored.
struct StoredFile {
    std::wstring path;      // where it is, as its provider understands it; never shown
    std::wstring name;      // in the cloud
    std::wstring version;   // changes with the content; empty: unknown, so it is never deleted
    std::uint64_t size = 0; // bytes
};

enum class UploadEnd { Done, NameTaken, Cancelled, Failed };

struct UploadResult {
    UploadEnd end = UploadEnd::Failed;
    StoredFile stored;     // after Done
    std::wstring sentence; // after Failed: why, and what to do
};

// What an upload reports to and asks. Used on the upload's own thread.
class UploadProgress {
public:
    // How much of the file its account has by now. Goes back when bytes have to be sent again.
    virtual void Show(std::uint64_t sent, std::uint64_t total) = 0;

    // An event that is set once the upload is to end: the user has cancelled, or the session ends.
    virtual HANDLE Cancelled() const = 0;

    // Runs `ask` on the thread of the progress window, which is its owner, and waits for its end.
    // False, without running it, when the upload is to end.
    virtual bool Ask(const std::function<void(HWND owner)>& ask) = 0;

protected:
    ~UploadProgress() = default;
};

struct ShareResult {
    bool isShared = false;
    std::wstring link;
    std::wstring shareId;    // what SetExpiry needs; may be empty
    std::wstring password;   // made for this link; empty: it has none. Shown once, stored nowhere
    std::wstring sentence;   // when it isn't shared: why, and what to do
    bool needsLogin = false; // it isn't shared because the account's login no longer counts

    // Nobody empties it on the way out of a thread that nobody waits for any more.
    ~ShareResult() { SecureZeroMemory(password.data(), password.size() * sizeof(wchar_t)); }
};

// A file that the user picked in the cloud.
struct PickedFile {
    StorageAccount account;
    std::wstring name;
    std::wstring link;
};

struct PickResult {
    std::vector<PickedFile> files; // none: the user left the picker, or the sentence
    std::wstring sentence;         // empty unless the pick failed
};

enum class DeletionEnd {
    Gone,        // deleted, or no longer there
    Changed,     // another version than the one that was stored: it stays
    Unreachable, // to be tried again in a later run
};

// One instance a manager, destroyed on any thread once the session has ended and none of its
// functions runs any more. Where nothing else is stated a function is called on the thread that
// owns the dialogs. `ended` is an event: once it is set, the function returns soon. May throw; the
// caller takes that as a failure without a sentence.
class StorageProvider {
public:
    virtual ~StorageProvider() = default;

    virtual std::uint32_t Id() const noexcept = 0;
    // What it is called in texts; the same for each account, without server or user. At most 127
    // characters.
    virtual std::wstring DisplayName() const = 0;
    virtual std::wstring ShortDescription() const = 0;
    // Id of its icon in this module's resources.
    virtual UINT IconId() const noexcept = 0;
    virtual bool Has(obcontract::ProviderCapability capability) const noexcept = 0;

    // Lets the user log in to an account, or to a new one when the key is empty. Nothing after a
    // cancel. Explains a failure itself, in the window. Called for an account that is logged in
    // when a share needs a login.
    virtual std::optional<StorageAccount> LogIn(const std::wstring& key, HWND owner) = 0;
    // Asks no server: whether an upload may be tried without asking the user first.
    virtual bool IsLoggedIn(const std::wstring& key) const = 0;
    // Forgets the account and its password.
    virtual void LogOut(const std::wstring& key, HWND owner) = 0;
    // The account page: shows and changes how the account is used.
    virtual void Manage(const std::wstring& key, HWND owner) = 0;

    // On any thread, also for several accounts at the same time. Nothing when it can't be asked.
    virtual std::optional<AccountSpace> Space(const std::wstring& key, HANDLE ended) const = 0;
    // Bytes of the largest file; nothing when no limit is known.
    virtual std::optional<std::uint64_t> MaxFileSize(const std::wstring& key) const = 0;
    // The folder that all uploads of the account are stored below; empty when it has none.
    virtual std::wstring RootFolder(const std::wstring& key) const = 0;

    // On the upload's own thread. Never replaces a file: NameTaken, with nothing stored, when the
    // name is there already.
    virtual UploadResult Upload(const std::wstring& key, const UploadFile& file,
                                UploadProgress& progress) = 0;
    // On a thread of its own. Makes a link that others can open. After a result that isn't shared
    // it may be called again: a server that has made the share before is looked at first.
    virtual ShareResult Share(const std::wstring& key, const StoredFile& file, HANDLE ended) = 0;
    // On a thread of its own. Lets the link of a share end after so many days; false when its
    // server can't, which leaves it to the deletion.
    virtual bool SetExpiry(const std::wstring& key, const std::wstring& shareId, std::int32_t days,
                           HANDLE ended) = 0;
    // On a thread of its own, also after the account was logged out. Deletes the file if it is
    // unchanged. Gone for a file that can't ever be reached without the account.
    virtual DeletionEnd Delete(const std::wstring& key, const StoredFile& file, HANDLE ended) = 0;
    // As Delete, for what an upload of a process that was killed may have left under a temporary
    // name: `path` is that of its PartNote. Changed for a path that no upload makes. A provider
    // that makes no such notes leaves this.
    virtual DeletionEnd RemovePart(const std::wstring& key, const std::wstring& path,
                                   HANDLE ended) {
        static_cast<void>(key), static_cast<void>(path), static_cast<void>(ended);
        return DeletionEnd::Changed;
    }

    // Lets the user pick files of an account, with their links. `preferred`: the account to begin
    // with, empty when there is none. Takes no selection for which FitsLinkText is false.
    virtual PickResult Pick(const std::wstring& preferred, HWND owner) = 0;
};

} // namespace providers

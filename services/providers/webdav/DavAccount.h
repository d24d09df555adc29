// What is kept of an account of a WebDAV server. Its password is kept elsewhere: AccountPassword.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/http/HttpUrl.h"
#include "services/providers/storage/AccountBook.h"

namespace providers {

inline constexpr std::size_t kLongestDavUser = 256;     // characters
inline constexpr std::size_t kLongestDavAddress = 1900; // characters: what the book has room for

// Values of an account in the book: Address, User, LinkPattern, LinkPasswords ("1" or empty).
struct DavSettings {
    HttpUrl root;                  // the folder of the account; its path ends with a slash
    std::wstring user;             // never empty
    std::wstring pattern;          // of links, as in FolderLink.h; empty: none
    bool hasLinkPasswords = false; // whether the user wants a password for each link

    bool operator==(const DavSettings&) const = default;
};

// Whether an account can be kept: its user and address aren't too long, and the user's name has
// nothing that a login can't transmit (a colon, a control character).
bool CanBeKept(const DavSettings& settings);

// Nothing when there is no such account, or none with a usable address and user. A pattern that
// makes no links counts as none. On any thread, like the others.
std::optional<DavSettings> ReadDavAccount(const AccountBook& book, const std::wstring& accountKey);

// A new account with its password. Nothing when it can't be kept whole, with nothing left of it.
std::optional<StorageAccount> AddDavAccount(const AccountBook& book, const DavSettings& settings,
                                            const ObLib::Secret& password);

// Changes all but the password, and the label with them. False with what was there before when it
// can't be written whole.
bool ChangeDavAccount(const AccountBook& book, const std::wstring& accountKey,
                      const DavSettings& settings);

// Removes the account and its password. The password goes first and in any case.
void RemoveDavAccount(const AccountBook& book, const std::wstring& accountKey);

// The key of the account of this user and folder; empty for none.
std::wstring DavAccountOf(const AccountBook& book, const HttpUrl& root, const std::wstring& user);

// The keys of the accounts whose folders are around this address, oldest first. They may be of
// several users, who have different files at one address.
std::vector<std::wstring> DavAccountsAround(const AccountBook& book, const HttpUrl& url);

// Whether the address is below the folder of an account.
bool IsBelow(const HttpUrl& url, const HttpUrl& root);

} // namespace providers

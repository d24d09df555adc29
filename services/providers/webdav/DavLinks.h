// How the files of an account get links: by the server where it makes them, else by the account's
// pattern.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "services/providers/webdav/DavServers.h"

namespace providers {

enum class LinkWay : std::uint8_t { ByServer, ByPattern, None };

struct LinkPlan {
    LinkWay way = LinkWay::None;
    std::optional<ShareApi> server; // with ByServer
    bool hasPassword = false;       // whether each link gets one
    std::wstring sentence;          // with None: why, and what to do
};

// What becomes of links to this account's files. `server`: what DavServers::Shares has returned. A
// password that the user or the administrator wants is never left out.
LinkPlan PlanLinks(const DavSettings& settings, const std::optional<ShareApi>& server);

// The link to a file below the account's folder by its pattern; empty when the file is elsewhere.
std::wstring LinkByPattern(const DavSettings& settings, const HttpUrl& file);

// Makes a link to a file of the account. `isOwnFile`: this run has stored it, so that no share of
// it is anybody else's. On any thread; returns soon after `cancelled` is set.
ShareResult ShareDavFile(DavServers& servers, const std::wstring& accountKey, const HttpUrl& file,
                         bool isOwnFile, HANDLE cancelled);

// Lets a link of the server end after so many days. False when the server can't be asked, or
// doesn't do it.
bool EndDavLink(DavServers& servers, const std::wstring& accountKey, const std::wstring& shareId,
                std::int32_t days, HANDLE cancelled);

// Ends a link that the server has made. Nobody is told when it can't be asked.
void RemoveDavLink(DavServers& servers, const std::wstring& accountKey,
                   const std::wstring& shareId);

// Whole sentences: why a server has made no link, and what to do. Empty for a cancel.
std::wstring ShareSentence(const ShareError& error, const HttpOrigin& server);

} // namespace providers

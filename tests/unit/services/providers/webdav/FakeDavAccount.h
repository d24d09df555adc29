// An account of a server that is only a script: what is in its folders, and how sharing ends.
#pragma once

#include <windows.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/webdav/DavPickAccount.h"
#include "tests/support/WindowKit.h"

namespace providers {

inline DavItem File(const std::wstring& name, std::optional<std::uint64_t> size = 1'000) {
    const HttpOrigin origin{true, "files.example.com", 443};
    return {{origin, "/dav/" + EncodePathPart(ToUtf8(name)), ""},
            name,
            false,
            size,
            "",
            false,
            std::nullopt,
            std::nullopt};
}

inline DavItem Folder(const std::wstring& name) {
    DavItem item = File(name, std::nullopt);
    item.isFolder = true;
    return item;
}

inline ShareResult Link(const std::wstring& link, const std::wstring& password = {}) {
    ShareResult result;
    result.isShared = true;
    result.link = link;
    result.password = password;
    return result;
}

// Lives as long as its functions are used: they own it. Set up before the picker is shown; what a
// test changes later is atomic.
struct FakeDavAccount {
    using Listing = DavResult<std::vector<DavItem>>;

    std::map<std::wstring, Listing> folders;   // by their names, with slashes between
    std::set<std::wstring> silent;             // folders that are listed after `answers` only
    std::map<std::wstring, ShareResult> links; // by name; otherwise https://l/NAME
    bool throws = false;
    bool isShareSilent = false;
    bool heedsCancel = true;
    const ObLib::UniqueKernelHandle answers{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<int> lists = 0;
    std::atomic<int> cancelledLists = 0;
    std::atomic<int> endedLists = 0;
    std::atomic<int> shares = 0;
    std::atomic<int> endedShares = 0;
    std::mutex lock; // of the links that were ended
    std::vector<std::wstring> endedLinks;

    void Wait(HANDLE cancelled) const {
        const HANDLE events[] = {answers.Get(), cancelled};
        WaitForMultipleObjects(heedsCancel ? 2 : 1, events, FALSE, obtest::kUiLimit);
    }
    Listing List(const std::vector<std::wstring>& folder, HANDLE cancelled) {
        ++lists;
        std::wstring path;
        for (const std::wstring& name : folder) path += (path.empty() ? L"" : L"/") + name;
        if (silent.contains(path)) Wait(cancelled);
        if (WaitForSingleObject(cancelled, 0) == WAIT_OBJECT_0) ++cancelledLists;
        ++endedLists;
        if (throws) throw std::runtime_error("listing");
        const auto known = folders.find(path);
        if (known != folders.end()) return known->second;
        return DavError{DavFault::NotFound, 404, {}, std::nullopt};
    }
    void End(const ShareResult& link) {
        const std::lock_guard guard(lock);
        endedLinks.push_back(link.link);
    }
    std::vector<std::wstring> EndedLinks() {
        const std::lock_guard guard(lock);
        return endedLinks;
    }
    ShareResult Share(const DavItem& item, HANDLE cancelled) {
        ++shares;
        if (isShareSilent) Wait(cancelled);
        ++endedShares;
        if (throws) throw std::runtime_error("sharing");
        const auto known = links.find(item.name);
        return known == links.end() ? Link(L"https://l/" + item.name) : known->second;
    }
};

inline DavPickAccount AccountOf(const std::shared_ptr<FakeDavAccount>& fake,
                                const std::wstring& key = L"{key}") {
    return {{key, L"Account " + key},
            {true, "files.example.com", 443},
            [fake](const std::vector<std::wstring>& folder, HANDLE cancelled) {
                return fake->List(folder, cancelled);
            },
            [fake](const DavItem& item, HANDLE cancelled) { return fake->Share(item, cancelled); },
            [fake](const ShareResult& link) { fake->End(link); }};
}

} // namespace providers

// How much space the accounts have, asked of their servers.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "services/providers/storage/StorageRun.h"
#include "services/providers/worker/DetachedCall.h"

namespace providers {

inline constexpr DWORD kSpaceLimit = 2000; // milliseconds that an account has for its answer

// The first question is asked of all accounts of all providers side by side, each on a thread of
// its own that nobody waits for beyond the limit. What is returned for an account is kept. On the
// thread that owns the dialogs.
class AccountSpaces {
public:
    explicit AccountSpaces(std::shared_ptr<StorageRun> run, DWORD limit = kSpaceLimit);

    // Unknown when the account's provider doesn't answer in time, can't be asked, throws or doesn't
    // report space, and for an account that isn't there. May throw std::bad_alloc.
    AccountSpace Of(const std::wstring& accountKey);

    // Lets the next question be asked anew: the user has logged in to the account.
    void Forget(const std::wstring& accountKey);

private:
    using Call = DetachedCall<std::optional<AccountSpace>>;
    struct Question {
        std::optional<Call> call = {}; // nothing once the space is settled
        ULONGLONG asked = 0;           // of GetTickCount64
        AccountSpace space;
    };

    void AskAll();
    void Ask(const StorageProvider& provider, const std::wstring& accountKey);
    void Settle(Question& question) const;

    std::shared_ptr<StorageRun> run_;
    DWORD limit_;
    bool hasAsked_ = false;
    std::map<std::wstring, Question> questions_; // by account
};

} // namespace providers

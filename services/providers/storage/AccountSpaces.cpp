#include "services/providers/storage/AccountSpaces.h"

#include <utility>

namespace providers {

AccountSpaces::AccountSpaces(std::shared_ptr<StorageRun> run, DWORD limit)
    : run_(std::move(run)), limit_(limit) {}

AccountSpace AccountSpaces::Of(const std::wstring& accountKey) {
    if (!std::exchange(hasAsked_, true)) AskAll();
    if (!questions_.contains(accountKey)) {
        const StorageProvider* const provider = run_->ProviderOf(accountKey);
        if (!provider) return {};
        Ask(*provider, accountKey);
    }
    Question& question = questions_[accountKey];
    Settle(question);
    return question.space;
}

void AccountSpaces::Forget(const std::wstring& accountKey) { questions_.erase(accountKey); }

void AccountSpaces::AskAll() {
    for (const auto& provider : run_->Providers()) {
        for (const StorageAccount& account : run_->Book().Accounts(provider->Id())) {
            Ask(*provider, account.key);
        }
    }
}

// The thread keeps the run, and with it the provider, for as long as it takes.
void AccountSpaces::Ask(const StorageProvider& provider, const std::wstring& accountKey) {
    Question& question = questions_[accountKey];
    if (!provider.Has(obcontract::ProviderCapability::FreeSpace)) return;
    question.call.emplace([run = run_, &provider, accountKey](HANDLE) {
        return provider.Space(accountKey, run->Ended());
    });
    question.asked = GetTickCount64();
}

// What comes later than the limit isn't waited for, and not taken once the account was reported as
// unknown.
void AccountSpaces::Settle(Question& question) const {
    auto call = std::exchange(question.call, std::nullopt);
    if (!call) return;
    const ULONGLONG passed = GetTickCount64() - question.asked;
    const DWORD rest = passed < limit_ ? limit_ - static_cast<DWORD>(passed) : 0;
    const HANDLE events[] = {call->Done(), run_->Ended()};
    if (WaitForMultipleObjects(2, events, FALSE, rest) != WAIT_OBJECT_0) return;
    const auto space = call->Take().value_or(std::nullopt);
    if (space) question.space = *space;
}

} // namespace providers

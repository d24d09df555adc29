#include "services/providers/storage/AccountSpaces.h"

#include <new>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/DetachedThread.h"

namespace providers {

// Shared by the thread that asks and the one that waits. The space is written before the event is
// set, and read after.
struct AccountSpaces::Answer {
    Answer() : came(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        if (!came) throw std::bad_alloc();
    }

    ObLib::UniqueKernelHandle came;
    AccountSpace space;
};

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
    const auto answer = std::make_shared<Answer>();
    const bool isAsked = RunDetached([run = run_, &provider, accountKey, answer] {
        answer->space = ObLib::Guarded(std::optional<AccountSpace>(), [&] {
                            return provider.Space(accountKey, run->Ended());
                        }).value_or(AccountSpace{});
        SetEvent(answer->came.Get());
    });
    if (isAsked) question.answer = answer;
    question.asked = GetTickCount64();
}

// What comes later than the limit isn't waited for, and not taken once the account was reported as
// unknown.
void AccountSpaces::Settle(Question& question) const {
    const auto answer = std::exchange(question.answer, nullptr);
    if (!answer) return;
    const ULONGLONG passed = GetTickCount64() - question.asked;
    const DWORD rest = passed < limit_ ? limit_ - static_cast<DWORD>(passed) : 0;
    const HANDLE events[] = {answer->came.Get(), run_->Ended()};
    if (WaitForMultipleObjects(2, events, FALSE, rest) == WAIT_OBJECT_0) {
        question.space = answer->space;
    }
}

} // namespace providers

// Why something failed, by account.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace providers {

struct AccountError {
    std::uint32_t code = 0; // of SetLastProviderError; 0: the sentence counts
    std::wstring sentence;  // for the user; empty: nothing is known but that it failed
};

// The last error of each account. One for all instances of a manager: an upload may go through an
// instance that isn't the account's. On the thread that owns the dialogs.
class AccountErrors {
public:
    // Takes the place of what was there. Code 0 leaves no error.
    void SetCode(const std::wstring& accountKey, std::uint32_t code);
    void SetSentence(const std::wstring& accountKey, std::wstring sentence);
    void Clear(const std::wstring& accountKey);

    std::optional<AccountError> Of(const std::wstring& accountKey) const;

private:
    std::map<std::wstring, AccountError> errors_;
};

} // namespace providers

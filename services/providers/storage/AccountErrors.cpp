#include "services/providers/storage/AccountErrors.h"

#include <utility>

namespace providers {

void AccountErrors::SetCode(const std::wstring& accountKey, std::uint32_t code) {
    if (code == 0) return Clear(accountKey);
    errors_[accountKey] = {code, {}};
}

void AccountErrors::SetSentence(const std::wstring& accountKey, std::wstring sentence) {
    errors_[accountKey] = {0, std::move(sentence)};
}

void AccountErrors::Clear(const std::wstring& accountKey) { errors_.erase(accountKey); }

std::optional<AccountError> AccountErrors::Of(const std::wstring& accountKey) const {
    const auto found = errors_.find(accountKey);
    if (found == errors_.end()) return {};
    return found->second;
}

} // namespace providers

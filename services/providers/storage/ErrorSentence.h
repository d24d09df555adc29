// What the user reads about the last error of an account.
#pragma once

#include <string>

#include "services/providers/storage/StorageRun.h"

namespace providers {

// The sentence about the file, for the two codes of the contract with the file's name and the
// account's limit; empty when the account has no error. `asked` is the provider through which the
// error is asked for, of which the account needn't be.
std::wstring ErrorSentence(const StorageRun& run, const StorageProvider& asked,
                           const std::wstring& accountKey, const std::wstring& fileName);

} // namespace providers

#include "services/providers/Manager.h"

void obcontract::ObExtensionsManager::Begin(std::int64_t hive, const wchar_t* key) {
    End();
    const auto root = providers::PredefinedKey(hive);
    if (!root || !key || *key == L'\0') return;
    // No provider is built in yet: the catalogue stays empty, and whatever is asked of a provider
    // is answered with no.
    session_.emplace(providers::Session{providers::AccountStore(*root, key), {}, {}, {}});
}

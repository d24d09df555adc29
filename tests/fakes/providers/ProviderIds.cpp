#include "tests/fakes/providers/ProviderIds.h"

#include <map>

namespace fakes {
namespace {

std::map<const obcontract::CloudProvider*, std::uint32_t>& Ids() {
    static std::map<const obcontract::CloudProvider*, std::uint32_t> ids;
    return ids;
}

} // namespace

void NoteProvider(const obcontract::CloudProvider* provider, std::uint32_t id) {
    Ids()[provider] = id;
}

std::optional<std::uint32_t> IdOfProvider(const obcontract::CloudProvider* provider) {
    const auto found = Ids().find(provider);
    if (found == Ids().end()) return std::nullopt;
    return found->second;
}

} // namespace fakes

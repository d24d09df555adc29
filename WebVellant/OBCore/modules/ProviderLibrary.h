// The provider manager, bound at run time, and the typed call of a slot of its objects.
#pragma once

#include <windows.h>

#include "contracts/ProviderManager.h"

namespace obcore {

// Binds PVXManager64.dll from this library's own folder on first need, so that a browser process
// never loads it. False when the file or one of its 32 entries is missing; nothing stays loaded
// then. Host side and configuration entry only, on their one thread.
bool LoadProviderManager();

// The bound entries. Valid only after LoadProviderManager() has returned true in this process.
const obcontract::ProviderManagerEntries& ProviderManager() noexcept;

// Process detach only.
void FreeProviderManager() noexcept;

inline constexpr std::uint32_t kAccountCapacity = 16; // profiles that GetAccountProfiles is given

// Whether a walk over the storage providers that looks for a place to store takes this one.
constexpr bool IsOfferedForStoring(std::uint32_t providerId) noexcept {
    for (const std::uint32_t other : obcontract::kProvidersNotForStoring) {
        if (providerId == other) return false;
    }
    return true;
}

// The size index that GetBitmap takes, for the system's small icon width in pixels: images of 16,
// 20, 24 and 32 pixels.
constexpr std::uint32_t BitmapSizeIndex(int smallIconWidth) noexcept {
    if (smallIconWidth < 20) return 0;
    if (smallIconWidth < 24) return 1;
    return smallIconWidth < 32 ? 2 : 3;
}

// A slot of an object: its number, its name, its signature. `Call` passes the object first, as the
// platform's convention has it.
template <class Object, std::size_t Number, class Signature>
struct ObjectSlot;

template <class Object, std::size_t Number, class Result, class... Arguments>
struct ObjectSlot<Object, Number, Result(Arguments...)> {
    static constexpr std::size_t kNumber = Number;

    static Result Call(Object* object, Arguments... arguments) {
        using Function = Result (*)(Object*, Arguments...);
        return reinterpret_cast<Function>(object->table[Number])(object, arguments...);
    }
};

// The slots of the contract by name: slots::OnCloudProvider::GetProviderId::Call(provider).
namespace slots {

using namespace obcontract; // the contract's tables name its types bare

#define OB_NAME_SLOT(object, number, name, result, arguments)                                      \
    using name = ObjectSlot<::obcontract::object, number, result arguments>;

struct OnDownloadList {
    OB_DOWNLOAD_LIST_SLOTS(OB_NAME_SLOT)
};
struct OnUploadList {
    OB_UPLOAD_LIST_SLOTS(OB_NAME_SLOT)
};
struct OnCloudProvider {
    OB_PROVIDER_SLOTS(OB_NAME_SLOT)
};

#undef OB_NAME_SLOT

} // namespace slots
} // namespace obcore

// The contract with the provider manager, PVXManager64.dll: its exports, the records that cross
// the edge byte by byte, and the slots of the objects that it hands out.
//
// Objects are reached by slot number (see OB_PROVIDER_SLOTS and its kin), because their tables have
// many slots that nobody here calls. `Bool` is one byte of which only the low byte counts.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace ObPVX {
class ObPvxCallback;
}

namespace obcontract {

inline constexpr wchar_t kProviderManagerFileName[] = L"PVXManager64.dll";
inline constexpr wchar_t kProviderManagerKey[] = L"Software\\Tavi Ren Computing\\Ombrix\\PVX";

using Bool = std::uint8_t;

struct ObExtensionsManager; // opaque
using ProviderManagerHandle = ObExtensionsManager*;

enum class ProviderKind : std::uint32_t { Storage = 1, Transform = 4 };

enum class TransformId : std::uint32_t {
    ResizeImages = 2,
    ConvertPdf = 3,
    Watermark = 5,
    ConvertPhotos = 50,
    RemoveInfo = 51,
    CombinePdfs = 65,
    SignPdfs = 66,
    ConvertFromPdf = 70,
};

// Storage providers that are treated apart, by number; all other ids are the manager's business.
inline constexpr std::uint32_t kNoProvider = 0;
// Comes first in the chooser, is never put on top as the default, and takes only archives.
inline constexpr std::uint32_t kArchivesOnlyProvider = 21;
// Enumerated, and not offered for storing.
inline constexpr std::uint32_t kProvidersNotForStoring[] = {30, 31, 32, 33, 34, 45};

inline constexpr std::uint32_t ProviderErrorTooLarge = 7; // codes of SetLastProviderError
inline constexpr std::uint32_t ProviderErrorQuota = 9;
inline constexpr std::int64_t SizeUnknown = -2; // both values of GetAccountSpace: not known

enum class ProviderCapability : std::uint32_t { OpenPicker = 1, FreeSpace = 2, Folders = 1024 };

// Modes of SelectProviders.
inline constexpr std::uint32_t kSelectLeaveOut = 1;
inline constexpr std::uint32_t kSelectUse = 2;

// One cloud account: 2108 bytes, copied byte by byte.
struct ProviderProfile {
    std::uint32_t providerId; // 0: empty profile
    wchar_t accountLabel[51]; // shown for the account
    wchar_t accountKey[1000]; // its identity; empty: nobody logged in yet
    wchar_t reserved;         // zero
};
static_assert(sizeof(ProviderProfile) == 2108);
static_assert(offsetof(ProviderProfile, providerId) == 0);
static_assert(offsetof(ProviderProfile, accountLabel) == 4);
static_assert(offsetof(ProviderProfile, accountKey) == 106);
static_assert(offsetof(ProviderProfile, reserved) == 2106);

// One file in the cloud: 10064 bytes, filled by a provider.
struct CloudItem {
    ProviderProfile profile; // the account that has the file
    wchar_t link[2409];      // its share link
    wchar_t name[1569];      // its name as shown
};
static_assert(sizeof(CloudItem) == 10064);
static_assert(offsetof(CloudItem, profile) == 0);
static_assert(offsetof(CloudItem, link) == 2108);
static_assert(offsetof(CloudItem, name) == 6926);

// Objects of the manager: nothing but a table pointer is known of them. An instance of a provider
// belongs to the manager; a list belongs to the provider that made it and is given back to it.
struct CloudProvider {
    void* const* table;
};
struct DownloadList {
    void* const* table;
};
struct UploadList {
    void* const* table;
};

// The slots that are called: object, slot number, name, result, arguments after the object.
//
// Capacities are in wide characters: 128 for GetDisplayName, 2048 for GetAccountRootFolder; 16
// profiles for GetAccountProfiles, whose newest account is last and whose count of 0 or less means
// that there is no account. CreateDownloadList and CreateUploadList may answer null. SetCallback
// lends the object until ClearCallback. All of it on the thread that owns the dialogs.
#define OB_DOWNLOAD_LIST_SLOTS(SLOT)                                                               \
    SLOT(DownloadList, 0, GetItem, Bool, (std::uint32_t index, CloudItem * item))                  \
    SLOT(DownloadList, 1, AddItem, void, (const CloudItem* item))

#define OB_UPLOAD_LIST_SLOTS(SLOT)                                                                 \
    SLOT(UploadList, 1, AddFile, void,                                                             \
         (const wchar_t* localPath, const wchar_t* cloudName, std::uint64_t zero,                  \
          std::uint64_t alsoZero, const wchar_t* targetFolder))                                    \
    SLOT(UploadList, 2, GetItem, Bool, (std::uint32_t index, CloudItem * item))                    \
    SLOT(UploadList, 3, ResetList, void, (std::uint32_t zero))

// A provider's table has at least 138 slots.
inline constexpr std::size_t kCloudProviderSlotCount = 138;

#define OB_PROVIDER_SLOTS(SLOT)                                                                    \
    SLOT(CloudProvider, 11, GetProviderId, std::uint32_t, (void))                                  \
    SLOT(CloudProvider, 14, GetDisplayName, void,                                                  \
         (ProviderKind kind, wchar_t * buffer, std::uint32_t * capacity))                          \
    SLOT(CloudProvider, 21, SetLastProviderError, void, (std::uint32_t code))                      \
    SLOT(CloudProvider, 29, SetCallback, void, (ObPVX::ObPvxCallback * callback))                  \
    SLOT(CloudProvider, 30, ClearCallback, void, (void))                                           \
    SLOT(CloudProvider, 60, HasCapability, Bool, (ProviderKind kind, ProviderCapability mask))     \
    SLOT(CloudProvider, 104, CreateDownloadList, DownloadList*, (void))                            \
    SLOT(CloudProvider, 105, DestroyDownloadList, void, (DownloadList * list))                     \
    SLOT(CloudProvider, 106, CreateUploadList, UploadList*, (const wchar_t* accountKey))           \
    SLOT(CloudProvider, 107, DestroyUploadList, void, (UploadList * list))                         \
    SLOT(CloudProvider, 114, GetAccountSpace, Bool,                                                \
         (const wchar_t* accountKey, std::int64_t* freeBytes, std::int64_t* totalBytes))           \
    SLOT(CloudProvider, 115, GetMaxFileSize, std::uint64_t, (const wchar_t* accountKey))           \
    SLOT(CloudProvider, 116, GetAccountRootFolder, void,                                           \
         (const wchar_t* accountKey, wchar_t* buffer, std::uint32_t capacity))                     \
    SLOT(CloudProvider, 122, RunUpload, Bool,                                                      \
         (UploadList * list, HWND owner, const wchar_t* title, const wchar_t* body, Bool yes1,     \
          Bool no2, Bool yes3, Bool yes4, std::uint32_t one, void* none))                          \
    SLOT(CloudProvider, 123, ShareItems, Bool, (DownloadList * list))                              \
    SLOT(CloudProvider, 133, IsAccountLoggedIn, Bool, (const wchar_t* accountKey))                 \
    SLOT(CloudProvider, 136, GetAccountProfiles, std::int32_t,                                     \
         (ProviderProfile * profiles, std::uint32_t capacity))                                     \
    SLOT(CloudProvider, 137, ManageAccount, void, (HWND owner, const wchar_t* accountKey))

// The 32 exports: name, result, arguments.
//
// Nothing that an export hands out is freed by its caller, but for the bitmap of GetBitmap, which
// is the caller's to delete. An instance is usable for as long as the manager is initialised; a
// text that a returned pointer leads to is copied at once. Capacities are in wide characters: 128
// for GetShortDescription, 2048 for the two error texts, 514 for each buffer of GetTargetFile. A
// manager serves one run, without locks, on the thread that owns the dialogs; while that thread
// waits, the transform worker calls ExecuteTransforms, ExecutePostTransforms, GetTargetFile,
// GetSelectedTransformSummary, SetProviderTarget, GetProviderTarget and SelectProviders. After a
// cancel the worker's current call may still be running, or be about to begin, when the thread of
// the dialogs calls Deinit: that ends a running call, and a call that comes later answers no. The
// product calls DeleteObExtensionsManager only after the worker's last call has ended.
#define OB_PROVIDER_MANAGER_LIFE(ENTRY)                                                            \
    ENTRY(CreateObExtensionsManager, ProviderManagerHandle, (void))                                \
    ENTRY(Init, void, (ProviderManagerHandle manager, std::int64_t hive, const wchar_t* key))      \
    ENTRY(Deinit, void, (ProviderManagerHandle manager))                                           \
    ENTRY(DeleteObExtensionsManager, void, (ProviderManagerHandle manager))

#define OB_PROVIDER_MANAGER_STORAGE(ENTRY)                                                         \
    ENTRY(EnumProvidersReset, void, (ProviderManagerHandle manager))                               \
    ENTRY(EnumStorageProviders, CloudProvider*, (ProviderManagerHandle manager))                   \
    ENTRY(GetProviderInstance, CloudProvider*,                                                     \
          (ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind))            \
    ENTRY(GetDefaultStorageProvider, void,                                                         \
          (ProviderManagerHandle manager, ProviderProfile * profile))                              \
    ENTRY(SetDefaultStorageProvider, Bool,                                                         \
          (ProviderManagerHandle manager, const ProviderProfile* profile))                         \
    ENTRY(IsProviderSupport, Bool,                                                                 \
          (ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind))            \
    ENTRY(Login2, Bool,                                                                            \
          (ProviderManagerHandle manager, CloudProvider * provider, wchar_t * accountKey,          \
           wchar_t * accountLabel, HWND owner))                                                    \
    ENTRY(Logout2, void,                                                                           \
          (ProviderManagerHandle manager, CloudProvider * provider, const wchar_t* accountKey,     \
           HWND owner))                                                                            \
    ENTRY(IsAuthorized2, Bool,                                                                     \
          (ProviderManagerHandle manager, CloudProvider * provider, const wchar_t* accountKey,     \
           HWND owner))                                                                            \
    ENTRY(                                                                                         \
        GetShortDescription, void,                                                                 \
        (CloudProvider * provider, std::uint32_t one, wchar_t * buffer, std::uint32_t * capacity)) \
    ENTRY(GetBitmap, HBITMAP,                                                                      \
          (CloudProvider * provider, std::uint32_t one, std::uint32_t sizeIndex))                  \
    ENTRY(GetLastErrorOfProvider, void,                                                            \
          (CloudProvider * provider, const wchar_t* accountKey, const wchar_t* fileName,           \
           wchar_t* buffer, std::uint64_t* capacity))                                              \
    ENTRY(GetLastErrorCodeOfProvider, std::int32_t,                                                \
          (ProviderManagerHandle manager, DownloadList * list, const wchar_t* emptyText,           \
           wchar_t* buffer, std::uint64_t* capacity))

#define OB_PROVIDER_MANAGER_LISTS(ENTRY)                                                           \
    ENTRY(GetSharedListFromOpenPicker, Bool,                                                       \
          (ProviderManagerHandle manager, CloudProvider * provider, DownloadList * list,           \
           HWND owner))                                                                            \
    ENTRY(DeleteDownloadList, void, (CloudProvider * provider, DownloadList * list))               \
    ENTRY(AddFileToDeletionSchedule, Bool, (const CloudItem* item, std::int32_t days))

#define OB_PROVIDER_MANAGER_TRANSFORMS(ENTRY)                                                      \
    ENTRY(ShowProviderOptions, void,                                                               \
          (ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind, void* none, \
           HWND owner))                                                                            \
    ENTRY(ShowProviderOptionsWhenNoOptionsSet, Bool,                                               \
          (ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind, void* none, \
           HWND owner))                                                                            \
    ENTRY(                                                                                         \
        GetReadyForConvert, Bool,                                                                  \
        (HWND owner, ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind))  \
    ENTRY(SelectProviders, Bool,                                                                   \
          (ProviderManagerHandle manager, std::uint32_t mode, std::uint32_t providerId,            \
           ProviderKind kind))                                                                     \
    ENTRY(IsProviderTypeSelected, Bool, (ProviderManagerHandle manager, ProviderKind kind))        \
    ENTRY(GetSelectedTransformSummary, void,                                                       \
          (ProviderManagerHandle manager, std::int32_t * beforeList, std::int32_t * afterList,     \
           std::int32_t * perFile, std::int32_t * final))                                          \
    ENTRY(SetProviderTarget, void, (ProviderManagerHandle manager, const wchar_t* path))           \
    ENTRY(GetProviderTarget, const wchar_t*, (ProviderManagerHandle manager))                      \
    ENTRY(ExecuteTransforms, Bool,                                                                 \
          (ProviderManagerHandle manager, void* none1, HWND owner, const wchar_t* folder,          \
           std::uint32_t one, std::uint32_t mode, void* none2, void* none3))                       \
    ENTRY(ExecutePostTransforms, Bool,                                                             \
          (ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,                 \
           std::uint32_t* count, std::uint32_t mode, void* none1, void* none2))                    \
    ENTRY(ExecuteFinalTransforms, Bool,                                                            \
          (ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,                 \
           std::uint32_t count, std::uint32_t mode, void* none1, void* none2))                     \
    ENTRY(GetTargetFile, void,                                                                     \
          (ProviderManagerHandle manager, wchar_t* const* buffers, std::uint32_t* count,           \
           std::uint32_t capacity))

#define OB_PROVIDER_MANAGER_ENTRIES(ENTRY)                                                         \
    OB_PROVIDER_MANAGER_LIFE(ENTRY)                                                                \
    OB_PROVIDER_MANAGER_STORAGE(ENTRY)                                                             \
    OB_PROVIDER_MANAGER_LISTS(ENTRY)                                                               \
    OB_PROVIDER_MANAGER_TRANSFORMS(ENTRY)

// The bound entries, one pointer each, in the order of the tables.
struct ProviderManagerEntries {
#define OB_DECLARE_ENTRY(name, result, arguments) result(*name) arguments;
    OB_PROVIDER_MANAGER_ENTRIES(OB_DECLARE_ENTRY)
#undef OB_DECLARE_ENTRY
};

static_assert(sizeof(ProviderManagerEntries) == 32 * sizeof(void*));

} // namespace obcontract

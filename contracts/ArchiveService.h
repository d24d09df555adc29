// The contract with the archive service, obofcsvc64.dll: the entry points that are fetched by
// name, in this order. A missing one fails the binding.
//
// Plain functions of the platform's 64-bit convention; nothing throws across the edge. Results
// documented as low 16 bits or as a byte are masked by the caller.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obcontract {

inline constexpr wchar_t kArchiveServiceFileName[] = L"obofcsvc64.dll";

// Opaque value that CreateZipContext returns; it lives until DestroyZipContext.
using ZipContext = std::uint64_t;

inline constexpr std::uint32_t kCompressionDeflate = 8;       // writes a .zip
inline constexpr std::uint32_t kCompressionZipx = 0xFFFFFFFF; // writes a .zipx
inline constexpr std::uint16_t kEncryptionMethodAes128 = 4;   // bit values of the masks below
inline constexpr std::uint16_t kEncryptionMethodAes256 = 8;
inline constexpr std::uint32_t kPasswordCapacity = 260;   // bytes
inline constexpr std::uint32_t kPublicKeyCapacity = 1024; // bytes
inline constexpr std::uint16_t kSwitchEncryptionOff = 2;  // TryToShowWarningOrErrorMessage
inline constexpr std::uint32_t kFileNameRules = 2;        // modes of ValidateFilespecW
inline constexpr std::uint32_t kExtensionRules = 4;

// One row an entry: name, result, arguments. The order is the order of binding.
//
//  CreateZipContext               a new context; none is 0
//  DestroyZipContext              ends a context, whatever was done with it
//  PasswordDlg_C                  fetched, never called
//  PasswordNewDlg_C               owner, in/out method, password buffer and its capacity in bytes
//                                 (260); 1 means that the user gave a password
//  SetZipNameW                    full path of the zip to write
//  SetEncrypt                     encryption method bit, 0 for none
//  SetTempFolderW                 folder for the engine's own temporary files
//  SetImageResize                 fetched, never called
//  AddFileW                       full path of one source file
//  SetPassword                    the buffer that PasswordNewDlg_C filled
//  SetCompression                 8 or 0xFFFFFFFF
//  SetDuplicateReferences         a byte, 0 or 1
//  Zip                            owner, context; blocks until the zip is complete (0) or failed
//  CheckForUpdates_VB             owner, 1
//  WebHelpW                       owner, topic, the same topic
//  Encrypt_String_VB              fetched, never called
//  Decrypt_String_VB              fetched, never called
//  GetOmbrixFIPSSetting           low 16 bits
//  AllowedEncryptMethods          mask of method bits
//  DefaultEncryptionMethod        one method bit
//  TryToShowWarningOrErrorMessage owner, 0, byte 1; low 16 bits 2: encryption is off for this run
//  GetPublicKeyResult             narrow buffer, capacity 1024 bytes; 1 is success
//  SetPublicKeyResult             what GetPublicKeyResult returned
//  SetPublicKeyW                  the key as wide text
//  ValidateFilespecW              text, mode 2 (file name) or 4 (extension); 0 is accepted
//  LogLaunch, LogExit             brackets of a host process
//  LogAppletFeature               feature name, details
#define OB_ARCHIVE_SERVICE_ENTRIES(ENTRY)                                                          \
    ENTRY(CreateZipContext, ZipContext, (void))                                                    \
    ENTRY(DestroyZipContext, void, (ZipContext context))                                           \
    ENTRY(PasswordDlg_C, std::uint32_t, (void))                                                    \
    ENTRY(PasswordNewDlg_C, std::uint32_t,                                                         \
          (HWND owner, std::uint32_t * method, char* password, std::uint32_t capacity))            \
    ENTRY(SetZipNameW, void, (ZipContext context, const wchar_t* path))                            \
    ENTRY(SetEncrypt, void, (ZipContext context, std::uint32_t method))                            \
    ENTRY(SetTempFolderW, void, (ZipContext context, const wchar_t* folder))                       \
    ENTRY(SetImageResize, void, (void))                                                            \
    ENTRY(AddFileW, void, (ZipContext context, const wchar_t* path))                               \
    ENTRY(SetPassword, void, (ZipContext context, const char* password))                           \
    ENTRY(SetCompression, void, (ZipContext context, std::uint32_t method))                        \
    ENTRY(SetDuplicateReferences, void, (ZipContext context, std::uint8_t enabled))                \
    ENTRY(Zip, std::uint32_t, (HWND owner, ZipContext context))                                    \
    ENTRY(CheckForUpdates_VB, void, (HWND owner, std::uint32_t one))                               \
    ENTRY(WebHelpW, void, (HWND owner, const wchar_t* topic, const wchar_t* sameTopic))            \
    ENTRY(Encrypt_String_VB, void, (void))                                                         \
    ENTRY(Decrypt_String_VB, void, (void))                                                         \
    ENTRY(GetOmbrixFIPSSetting, std::uint32_t, (void))                                             \
    ENTRY(AllowedEncryptMethods, std::uint16_t, (void))                                            \
    ENTRY(DefaultEncryptionMethod, std::uint16_t, (void))                                          \
    ENTRY(TryToShowWarningOrErrorMessage, std::uint32_t,                                           \
          (HWND owner, std::uint32_t zero, std::uint8_t one))                                      \
    ENTRY(GetPublicKeyResult, std::uint32_t, (char* buffer, std::uint32_t capacity))               \
    ENTRY(SetPublicKeyResult, void, (ZipContext context, std::uint32_t result))                    \
    ENTRY(SetPublicKeyW, void, (ZipContext context, const wchar_t* key))                           \
    ENTRY(ValidateFilespecW, std::uint32_t, (const wchar_t* text, std::uint32_t mode))             \
    ENTRY(LogLaunch, void, (void))                                                                 \
    ENTRY(LogExit, void, (void))                                                                   \
    ENTRY(LogAppletFeature, void, (const wchar_t* feature, const wchar_t* details))

// The bound entries, one pointer each, in the order of the table.
struct ArchiveServiceEntries {
#define OB_DECLARE_ENTRY(name, result, arguments) result(*name) arguments;
    OB_ARCHIVE_SERVICE_ENTRIES(OB_DECLARE_ENTRY)
#undef OB_DECLARE_ENTRY
};

static_assert(sizeof(ArchiveServiceEntries) == 28 * sizeof(void*));

} // namespace obcontract

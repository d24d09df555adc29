// The named block of shared memory that joins the browser side and the host: one wire format for
// both roles of the library.
//
// All numbers are little-endian, all texts are NUL-terminated UTF-16. An offset counts bytes from
// the block's start; 0 means absent. A list is a run of NUL-terminated strings closed by an empty
// one. The comment of each field names the role that writes it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace obcontract {

inline constexpr wchar_t kExchangeBlockNameFormat[] = L"WEBVELLANT_SM_%d";
inline constexpr std::size_t kExchangeBlockNameCapacity = 32; // wide characters
inline constexpr std::uint32_t kExchangeBlockSize = 65536;    // bytes
inline constexpr std::int32_t kTextAreaOffset = 76;           // where texts may begin

// What the page reads of a dialog that the user cancelled, and of a run that failed, where the
// result is an HRESULT: HRESULT_FROM_WIN32(ERROR_CANCELLED).
inline constexpr std::int32_t kCancelled = static_cast<std::int32_t>(0x800704C7);

// Values of ExchangeBlock::Status. The status only moves forward, and after the launch only the
// host moves it.
enum class ExchangeStatus : std::uint32_t {
    OpenFileNameRequest = 0, // written by the browser side, not yet taken
    DialogRequest = 1,       // as 0 on the dialog path; stays when there is neither file nor link
    LinkAnswer = 2,          // the user made cloud links: text at LinkOffset
    OpenFileNameTaken = 3,   // taken by the host; the list is in the file slot if Result != 0
    DialogAnswer = 4,        // list of full paths at PathListOffset
};

// Bytes 24 to 75 as the browser side writes them on the open-file-name path.
struct OpenFileNameFields {
    std::uint16_t nFileExtension;
    std::uint16_t nFileOffset;
    std::uint32_t nFilterIndex;
    std::uint32_t nMaxCustFilter;
    std::uint32_t nMaxFile; // room at FileListOffset that the host assumes, in wide characters
    std::uint32_t nMaxFileTitle;
    std::uint32_t Flags;
    std::uint32_t FlagsEx;
    std::int32_t InitialDirOffset;
    std::int32_t TitleOffset;
    std::int32_t DefExtOffset;
    std::int32_t TemplateNameOffset;
    std::int32_t FilterOffset;   // a list
    std::int32_t FileListOffset; // the file slot: the host's output
};

// Bytes 24 to 35 of an answer with status LinkAnswer.
struct LinkAnswerFields {
    std::int32_t LinkOffset;
    std::uint8_t unused[8];
};

// Bytes 24 to 35 of an answer with status DialogAnswer.
struct DialogAnswerFields {
    std::uint8_t PickedFlag; // copied by the reader, means nothing
    std::uint8_t untouched[3];
    std::int32_t FolderOffset;   // an empty text, always at 76
    std::int32_t PathListOffset; // list of full paths, always at 78
};

struct ExchangeBlock {
    ExchangeStatus Status;            // both
    std::int32_t Result;              // host: BOOL or HRESULT, by the path
    std::uint8_t UploadBlocked;       // browser: 1 when cloud links are forbidden
    std::uint8_t reserved[3];         // nobody: stay 0
    std::uint32_t DialogOptions;      // browser, dialog path: IFileDialog::GetOptions
    std::int32_t CleanupFolderOffset; // host: temporary folder
    std::int32_t CleanupFileOffset;   // host: temporary file
    union {
        OpenFileNameFields Request;
        LinkAnswerFields Link;
        DialogAnswerFields Dialog;
    };
    std::uint8_t TextArea[kExchangeBlockSize - kTextAreaOffset];
};

static_assert(sizeof(ExchangeBlock) == kExchangeBlockSize);
static_assert(alignof(ExchangeBlock) == 4);
static_assert(offsetof(ExchangeBlock, Status) == 0);
static_assert(offsetof(ExchangeBlock, Result) == 4);
static_assert(offsetof(ExchangeBlock, UploadBlocked) == 8);
static_assert(offsetof(ExchangeBlock, reserved) == 9);
static_assert(offsetof(ExchangeBlock, DialogOptions) == 12);
static_assert(offsetof(ExchangeBlock, CleanupFolderOffset) == 16);
static_assert(offsetof(ExchangeBlock, CleanupFileOffset) == 20);
static_assert(offsetof(ExchangeBlock, Request) == 24);
static_assert(offsetof(OpenFileNameFields, nFileExtension) + 24 == 24);
static_assert(offsetof(OpenFileNameFields, nFileOffset) + 24 == 26);
static_assert(offsetof(OpenFileNameFields, nFilterIndex) + 24 == 28);
static_assert(offsetof(OpenFileNameFields, nMaxCustFilter) + 24 == 32);
static_assert(offsetof(OpenFileNameFields, nMaxFile) + 24 == 36);
static_assert(offsetof(OpenFileNameFields, nMaxFileTitle) + 24 == 40);
static_assert(offsetof(OpenFileNameFields, Flags) + 24 == 44);
static_assert(offsetof(OpenFileNameFields, FlagsEx) + 24 == 48);
static_assert(offsetof(OpenFileNameFields, InitialDirOffset) + 24 == 52);
static_assert(offsetof(OpenFileNameFields, TitleOffset) + 24 == 56);
static_assert(offsetof(OpenFileNameFields, DefExtOffset) + 24 == 60);
static_assert(offsetof(OpenFileNameFields, TemplateNameOffset) + 24 == 64);
static_assert(offsetof(OpenFileNameFields, FilterOffset) + 24 == 68);
static_assert(offsetof(OpenFileNameFields, FileListOffset) + 24 == 72);
static_assert(offsetof(LinkAnswerFields, LinkOffset) + 24 == 24);
static_assert(offsetof(DialogAnswerFields, PickedFlag) + 24 == 24);
static_assert(offsetof(DialogAnswerFields, FolderOffset) + 24 == 28);
static_assert(offsetof(DialogAnswerFields, PathListOffset) + 24 == 32);
static_assert(offsetof(ExchangeBlock, TextArea) == kTextAreaOffset);

} // namespace obcontract

// The texts that the code loads, by id. A test loads every one of them.
#pragma once

#include <windows.h>

namespace obcore {

#define OB_TEXT_IDS(TEXT)                                                                          \
    TEXT(ChoiceZip, 101)                                                                           \
    TEXT(ChoiceZipAndEncrypt, 102)                                                                 \
    TEXT(ChoiceNoZip, 103)                                                                         \
    TEXT(OneFileOnly, 104)                                                                         \
    TEXT(CopyFailed, 105)                                                                          \
    TEXT(NameNotValid, 112)                                                                        \
    TEXT(ExtensionNotValid, 113)                                                                   \
    TEXT(EncryptionNotAllowed, 114)                                                                \
    TEXT(CheckDaily, 115)                                                                          \
    TEXT(CheckWeekly, 116)                                                                         \
    TEXT(ZipFailed, 129)                                                                           \
    TEXT(ShareProvider, 130)                                                                       \
    TEXT(ShareOpen, 131)                                                                           \
    TEXT(ShareTrouble, 132)                                                                        \
    TEXT(SharePassword, 133)                                                                       \
    TEXT(ShareClosing, 134)                                                                        \
    TEXT(RowOfAccount, 135)                                                                        \
    TEXT(UploadTitle, 136)                                                                         \
    TEXT(UploadBody, 137)                                                                          \
    TEXT(ContinueByLogin, 138)                                                                     \
    TEXT(ContinueLoggedIn, 139)                                                                    \
    TEXT(AllFiles, 140)                                                                            \
    TEXT(TransformProgress, 141)                                                                   \
    TEXT(FreeOfTotal, 142)                                                                         \
    TEXT(SpaceUnknown, 144)                                                                        \
    TEXT(ShareExpiry, 145)                                                                         \
    TEXT(PickedFrom, 150)                                                                          \
    TEXT(SharePopup, 160)                                                                          \
    TEXT(PublicKeyUnusable, 161)                                                                   \
    TEXT(FirefoxOf32Bits, 162)                                                                     \
    TEXT(EdgeOf32Bits, 163)                                                                        \
    TEXT(ChromeOf32Bits, 164)                                                                      \
    TEXT(ConvertPdf, 180)                                                                          \
    TEXT(Watermark, 181)                                                                           \
    TEXT(ResizeImages, 182)                                                                        \
    TEXT(CloudButton, 183)                                                                         \
    TEXT(ConvertPhotos, 184)                                                                       \
    TEXT(RemoveInfo, 185)                                                                          \
    TEXT(CombinePdfs, 186)                                                                         \
    TEXT(SignPdfs, 187)                                                                            \
    TEXT(ConvertFromPdf, 188)                                                                      \
    TEXT(Method8, 189)                                                                             \
    TEXT(Method8Fips, 190)                                                                         \
    TEXT(AppendNothing, 1025)                                                                      \
    TEXT(AppendShortDate, 1026)                                                                    \
    TEXT(AppendLongDate, 1027)                                                                     \
    TEXT(AppendTime, 1028)                                                                         \
    TEXT(AppendDateTime, 1029)                                                                     \
    TEXT(PreviewNotValid, 1030)                                                                    \
    TEXT(DaysOutOfRange, 1031)                                                                     \
    TEXT(AboutCopyright, 1032)                                                                     \
    TEXT(NoAccountHint, 2001)                                                                      \
    TEXT(DecidedByAdministrator, 2002)

enum class TextId : UINT {
#define OB_NAME_TEXT(name, id) name = id,
    OB_TEXT_IDS(OB_NAME_TEXT)
#undef OB_NAME_TEXT
};

inline constexpr TextId kAllTextIds[] = {
#define OB_LIST_TEXT(name, id) TextId::name,
    OB_TEXT_IDS(OB_LIST_TEXT)
#undef OB_LIST_TEXT
};

} // namespace obcore

// How the fake provider manager is scripted, and how its calls are recorded.
//
// Script keys and what they mean; N is a provider id. Without a key the default in brackets
// is answered. A manager that is null, deleted or not initialised answers no whatever is scripted.
//
//   Providers                         ids of the storage providers, "7,21,30", in order [none]
//   CreateObExtensionsManager         0: null is answered [1]
//   IsProviderSupport.N.KIND          KIND 1 or 4 [1 for a storage provider of the list, else 0]
//   IsProviderSupport.N               the same for both kinds
//   GetProviderInstance.N             0: null; 2: a provider although the list lacks it [1: the
//                                     provider of the list]
//   GetDefaultStorageProvider         "id|label|key" [what was set in this manager]
//   SetDefaultStorageProvider         [1]
//   Login2                            [0]; Login2.accountKey, Login2.accountLabel: texts given out
//   IsAuthorized2.KEY                 for the account of this key [as the next line has it]
//   IsAuthorized2                     [0]
//   GetLastErrorOfProvider            [text "error CODE" after a code was set, else none]
//   GetLastErrorCodeOfProvider        [0]; GetLastErrorCodeOfProvider.text
//   GetLastErrorOfProvider.noNul, GetLastErrorCodeOfProvider.noNul, providerN.GetDisplayName.noNul,
//   providerN.GetAccountRootFolder.noNul, providerN.GetShortDescription.noNul
//                                     1: a buffer that the text fills has no NUL [0]
//   GetItem.nameOnly                  1: of the second item and of later ones, both kinds of list
//                                     give only the name, the rest is left alone [0]
//   GetSharedListFromOpenPicker       "name|link;name|link": what the user picks [nothing: no];
//                                     "name|link|id|key": an item of that provider and account
//   AddFileToDeletionSchedule.NAME    result for the item of that name [as the next line has it]
//   AddFileToDeletionSchedule         [1]
//   GetReadyForConvert.N, SelectProviders.N, ShowProviderOptionsWhenNoOptionsSet.N
//                                     [as IsProviderSupport.N.4]
//   IsProviderTypeSelected            [whether SelectProviders used one of the kind]
//   GetSelectedTransformSummary       "before,after,each,final" of each call of a manager, with ;
//                                     between them; the last one repeats [0,0,0,0]
//   GetProviderTarget.FILENAME        path; an empty answer drops the file [the target itself]
//   GetProviderTarget.null            1: null is answered for each file [0]
//   ExecuteTransforms.FILENAME        [as the next line has it]
//   ExecuteTransforms, ExecutePostTransforms, ExecuteFinalTransforms
//                                     results of a manager's calls, "1,1,0"; the last repeats [1]
//   ExecuteFinalTransforms.waits      1: the call dispatches messages until its owner window is
//                                     hidden or has gone, at most ten seconds [0]
//   ExecutePostTransforms.paths, ExecuteFinalTransforms.paths
//                                     "a|b": results of a call; with ; between the calls, the last
//                                     one repeats; an empty answer drops all [what came in]
//   ExecutePostTransforms.count       the count that the call gives back [number of results]
//   GetTargetFile.count               the count that the call gives back [number of results]
//   GetTargetFile.noNul               1: a buffer that a result fills has no NUL [0]
//   Threads                           1: each call is written with its thread, "Name() @123", and
//                                     with " with COM" after it if that thread has an apartment
//
//   providerN.GetDisplayName          [providerN]
//   providerN.GetShortDescription     [none]
//   providerN.GetBitmap               1: a bitmap of the size that the index names [0]
//   providerN.HasCapability           sum of the masks [0]
//   providerN.CreateUploadList, providerN.CreateDownloadList   0: null [1]
//   providerN.GetAccountSpace         "free,total" [no; the values are left alone]; "free,total,0":
//                                     the values are filled in and the answer is no
//   providerN.GetAccountSpace.KEY     the same for the account of this key
//   providerN.GetMaxFileSize          [the largest number]
//   providerN.GetAccountRootFolder    [none]
//   providerN.RunUpload               results of the attempts, "0,1"; the last one repeats [1]
//   providerN.RunUpload.reason        what slot 10 of the callback gets at each attempt, "1,0";
//                                     no call for 0 and for attempts past the end [0]
//   providerN.ShareItems              [1]; the link of an item becomes https://N.example/NAME
//   providerN.IsAccountLoggedIn       [0]
//   providerN.IsAccountLoggedIn.KEY   the same for the account of this key
//   providerN.GetAccountProfiles      "label|key;label|key", or a number as the count [0]
//   providerN.GetAccountProfiles.noNul
//                                     1: a label of 51 characters and more has no NUL [0]
//
// Calls are written as Name(arguments) in the order of the contract, a slot's object first.
// Output buffers aren't recorded; a capacity is, as a number. A profile is
// profile(id, "label", "key"), a cloud item item("name", "link"), an array paths("a", "b"), the
// callback callback, a manager that is deleted already stale manager. A slot that nobody should
// call is written as UnexpectedSlot(n).
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "contracts/ProviderManager.h"
#include "tests/fakes/Recording.h"

namespace fakes {

using obtest::RecordCall;
using obtest::ScriptedAnswer;
using obtest::ScriptedNumber;

std::wstring ScriptedText(const std::wstring& key, const std::wstring& otherwise = {});
std::uint64_t ScriptedCount(const std::wstring& key, std::uint64_t otherwise);
std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator);

// The number at `index` of a list such as "0,1"; past its end the last one; `empty` when there is
// no list.
std::int64_t NumberAt(const std::wstring& list, std::size_t index, std::int64_t empty);

// The item at `index` of a list such as "a;b"; past its end the last one; empty when there is no
// list.
std::wstring ItemAt(const std::wstring& list, std::size_t index);

// Copies as much of `text` as fits, with its NUL. A null or empty place is left alone.
void FillText(wchar_t* place, std::uint64_t capacity, const std::wstring& text);

// FillText, or without the NUL of a text that fills the place when the script has 1 for CALL.noNul.
void FillTextOf(const std::wstring& call, wchar_t* place, std::uint64_t capacity,
                const std::wstring& text);

std::wstring Describe(const wchar_t* text);
std::wstring Describe(obcontract::ProviderManagerHandle manager);
std::wstring Describe(const obcontract::CloudProvider* provider);
std::wstring Describe(const obcontract::DownloadList* list);
std::wstring Describe(const obcontract::UploadList* list);
std::wstring Describe(const obcontract::ProviderProfile* profile);
std::wstring Describe(const obcontract::CloudItem* item);
std::wstring Describe(const ObPVX::ObPvxCallback* callback);
std::wstring Describe(HWND window);
std::wstring Describe(const void* pointer);
std::wstring Describe(const std::vector<std::wstring>& paths);

// What a recorded line has after its closing bracket.
std::wstring DescribeThread();

template <class Number>
requires(std::is_integral_v<Number> || std::is_enum_v<Number>) std::wstring Describe(Number value) {
    return std::to_wstring(static_cast<std::int64_t>(value));
}

// Writes one call down.
template <class... Arguments>
void Record(const wchar_t* name, const Arguments&... arguments) {
    std::wstring line(name);
    line += L'(';
    [[maybe_unused]] const wchar_t* separator = L"";
    ((line += separator, line += Describe(arguments), separator = L", "), ...);
    line += L')' + DescribeThread();
    RecordCall(std::move(line));
}

} // namespace fakes

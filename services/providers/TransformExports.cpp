// Choosing and running transforms. No transform is built in yet: none can be selected, no stage
// counts any, and a stage that is run all the same fails, so that nobody takes files for changed.
#include <windows.h>

#include "services/providers/Answers.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace providers;

extern "C" {

void ShowProviderOptions(ProviderManagerHandle, std::uint32_t, ProviderKind, void*, HWND) {}

Bool ShowProviderOptionsWhenNoOptionsSet(ProviderManagerHandle, std::uint32_t, ProviderKind, void*,
                                         HWND) {
    return false;
}

Bool GetReadyForConvert(HWND, ProviderManagerHandle, std::uint32_t, ProviderKind) { return false; }

Bool SelectProviders(ProviderManagerHandle manager, std::uint32_t mode, std::uint32_t providerId,
                     ProviderKind kind) {
    return InSession<Bool>(manager, false, [&](Session& session) {
        return session.selection.Select(session.catalogue, mode, providerId, kind);
    });
}

Bool IsProviderTypeSelected(ProviderManagerHandle manager, ProviderKind kind) {
    return InSession<Bool>(manager, false,
                           [kind](Session& session) { return session.selection.HasAny(kind); });
}

void GetSelectedTransformSummary(ProviderManagerHandle, std::int32_t* beforeList,
                                 std::int32_t* afterList, std::int32_t* perFile,
                                 std::int32_t* final) {
    for (std::int32_t* count : {beforeList, afterList, perFile, final}) {
        if (count) *count = 0;
    }
}

void SetProviderTarget(ProviderManagerHandle manager, const wchar_t* path) {
    InSession(manager, 0, [path](Session& session) {
        session.target = path ? path : L"";
        return 0;
    });
}

// The path as it was set: a file that no transform changed isn't dropped. The text is valid until
// the next SetProviderTarget.
const wchar_t* GetProviderTarget(ProviderManagerHandle manager) {
    return InSession<const wchar_t*>(manager, L"",
                                     [](Session& session) { return session.target.c_str(); });
}

Bool ExecuteTransforms(ProviderManagerHandle, void*, HWND, const wchar_t*, std::uint32_t,
                       std::uint32_t, void*, void*) {
    return false;
}

// The count stays as it came in: the caller's files are still the caller's files.
Bool ExecutePostTransforms(ProviderManagerHandle, HWND, const wchar_t* const*, std::uint32_t*,
                           std::uint32_t, void*, void*) {
    return false;
}

Bool ExecuteFinalTransforms(ProviderManagerHandle, HWND, const wchar_t* const*, std::uint32_t,
                            std::uint32_t, void*, void*) {
    return false;
}

void GetTargetFile(ProviderManagerHandle, wchar_t* const*, std::uint32_t* count, std::uint32_t) {
    if (count) *count = 0;
}

} // extern "C"

OB_PROVIDER_MANAGER_TRANSFORMS(PROVIDERS_CHECK_ENTRY)

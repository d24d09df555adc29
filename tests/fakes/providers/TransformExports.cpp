// Choosing and running transforms.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/fakes/providers/FakeManager.h"
#include "tests/fakes/providers/Script.h"
#include "tests/fakes/providers/Support.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace fakes;

namespace {

// The answer of a call that is scripted per transform.
bool AnswerPerTransform(const wchar_t* call, std::uint32_t providerId, ProviderKind kind) {
    return ScriptedCount(std::wstring(call) + L'.' + std::to_wstring(providerId),
                         IsScriptedAsSupported(providerId, kind)) != 0;
}

std::wstring FileNameOf(const std::wstring& path) { return path.substr(path.rfind(L'\\') + 1); }

std::vector<std::wstring> PathsOf(const wchar_t* const* paths, std::uint32_t count) {
    return std::vector<std::wstring>(paths, paths + count);
}

// As a provider does that keeps its owner alive: the thread of the dialogs runs this call.
void DispatchUntilHidden(HWND window) {
    constexpr ULONGLONG kLimit = 10000; // milliseconds
    const ULONGLONG begin = GetTickCount64();
    while (IsWindowVisible(window) && GetTickCount64() - begin < kLimit) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (!IsDialogMessageW(window, &message)) DispatchMessageW(&message);
        }
    }
}

// The result that the script has for this call of the manager.
bool NextResult(ProviderManagerHandle manager, const std::wstring& call) {
    return NumberAt(ScriptedText(call), CountCall(manager, call), 1) != 0;
}

// Ends a list stage: what it produced is kept for GetTargetFile.
bool FinishStage(ProviderManagerHandle manager, const std::wstring& call,
                 const std::vector<std::wstring>& paths) {
    if (!IsReady(manager) || !NextResult(manager, call)) return false;
    const std::wstring key = call + L".paths";
    const auto scripted = ScriptedAnswer(key.c_str());
    manager->produced = scripted ? Split(ItemAt(*scripted, CountCall(manager, key)), L'|') : paths;
    return true;
}

} // namespace

extern "C" {

void ShowProviderOptions(ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind,
                         void* none, HWND owner) {
    Record(L"ShowProviderOptions", manager, providerId, kind, none, owner);
}

Bool ShowProviderOptionsWhenNoOptionsSet(ProviderManagerHandle manager, std::uint32_t providerId,
                                         ProviderKind kind, void* none, HWND owner) {
    Record(L"ShowProviderOptionsWhenNoOptionsSet", manager, providerId, kind, none, owner);
    return IsReady(manager) &&
           AnswerPerTransform(L"ShowProviderOptionsWhenNoOptionsSet", providerId, kind);
}

Bool GetReadyForConvert(HWND owner, ProviderManagerHandle manager, std::uint32_t providerId,
                        ProviderKind kind) {
    Record(L"GetReadyForConvert", owner, manager, providerId, kind);
    return IsReady(manager) && AnswerPerTransform(L"GetReadyForConvert", providerId, kind);
}

Bool SelectProviders(ProviderManagerHandle manager, std::uint32_t mode, std::uint32_t providerId,
                     ProviderKind kind) {
    Record(L"SelectProviders", manager, mode, providerId, kind);
    const auto guard = LockManagers();
    if (!IsReady(manager) || !AnswerPerTransform(L"SelectProviders", providerId, kind)) return 0;
    if (mode == kSelectUse) {
        manager->selected.emplace(providerId, kind);
    } else {
        manager->selected.erase({providerId, kind});
    }
    return 1;
}

Bool IsProviderTypeSelected(ProviderManagerHandle manager, ProviderKind kind) {
    Record(L"IsProviderTypeSelected", manager, kind);
    const auto guard = LockManagers();
    if (!IsReady(manager)) return 0;
    const bool any = std::any_of(manager->selected.begin(), manager->selected.end(),
                                 [kind](const auto& entry) { return entry.second == kind; });
    return ScriptedCount(L"IsProviderTypeSelected", any) != 0;
}

void GetSelectedTransformSummary(ProviderManagerHandle manager, std::int32_t* beforeList,
                                 std::int32_t* afterList, std::int32_t* perFile,
                                 std::int32_t* final) {
    Record(L"GetSelectedTransformSummary", manager);
    const auto guard = LockManagers();
    const std::wstring key = L"GetSelectedTransformSummary";
    std::wstring script;
    if (IsReady(manager)) script = ItemAt(ScriptedText(key), CountCall(manager, key));
    std::int32_t* const counts[] = {beforeList, afterList, perFile, final};
    for (std::size_t index = 0; index < 4; ++index) {
        if (!counts[index]) continue;
        *counts[index] = static_cast<std::int32_t>(NumberAt(script, index, 0));
    }
}

void SetProviderTarget(ProviderManagerHandle manager, const wchar_t* path) {
    Record(L"SetProviderTarget", manager, path);
    const auto guard = LockManagers();
    if (IsReady(manager)) manager->target = path ? path : L"";
}

const wchar_t* GetProviderTarget(ProviderManagerHandle manager) {
    Record(L"GetProviderTarget", manager);
    const auto guard = LockManagers();
    if (!IsReady(manager)) return L"";
    if (ScriptedCount(L"GetProviderTarget.null", 0) != 0) return nullptr;
    manager->answer =
        ScriptedText(L"GetProviderTarget." + FileNameOf(manager->target), manager->target);
    return manager->answer.c_str();
}

Bool ExecuteTransforms(ProviderManagerHandle manager, void* none1, HWND owner,
                       const wchar_t* folder, std::uint32_t one, std::uint32_t mode, void* none2,
                       void* none3) {
    Record(L"ExecuteTransforms", manager, none1, owner, folder, one, mode, none2, none3);
    const auto guard = LockManagers();
    if (!IsReady(manager)) return 0;
    const bool result = NextResult(manager, L"ExecuteTransforms");
    return ScriptedCount(L"ExecuteTransforms." + FileNameOf(manager->target), result) != 0;
}

Bool ExecutePostTransforms(ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,
                           std::uint32_t* count, std::uint32_t mode, void* none1, void* none2) {
    const auto given = PathsOf(paths, count ? *count : 0);
    Record(L"ExecutePostTransforms", manager, owner, given, given.size(), mode, none1, none2);
    const auto guard = LockManagers();
    if (!FinishStage(manager, L"ExecutePostTransforms", given)) return 0;
    manager->buffers = ScriptedCount(L"ExecutePostTransforms.count", manager->produced.size());
    if (count) *count = static_cast<std::uint32_t>(manager->buffers);
    return 1;
}

Bool ExecuteFinalTransforms(ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,
                            std::uint32_t count, std::uint32_t mode, void* none1, void* none2) {
    const auto given = PathsOf(paths, count);
    Record(L"ExecuteFinalTransforms", manager, owner, given, count, mode, none1, none2);
    if (ScriptedCount(L"ExecuteFinalTransforms.waits", 0) != 0) DispatchUntilHidden(owner);
    const auto guard = LockManagers();
    if (!FinishStage(manager, L"ExecuteFinalTransforms", given)) return 0;
    manager->buffers = count;
    return 1;
}

void GetTargetFile(ProviderManagerHandle manager, wchar_t* const* buffers, std::uint32_t* count,
                   std::uint32_t capacity) {
    Record(L"GetTargetFile", manager, capacity);
    const auto guard = LockManagers();
    if (count) *count = 0;
    if (!IsReady(manager)) return;
    const auto& produced = manager->produced;
    for (std::size_t index = 0; index < std::min(produced.size(), manager->buffers); ++index) {
        FillTextOf(L"GetTargetFile", buffers[index], capacity, produced[index]);
    }
    const auto results = ScriptedCount(L"GetTargetFile.count", produced.size());
    if (count) *count = static_cast<std::uint32_t>(results);
}

} // extern "C"

OB_PROVIDER_MANAGER_TRANSFORMS(FAKE_CHECK_ENTRY)

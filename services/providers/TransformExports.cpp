// Choosing and running transforms.
#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ModulePath.h"
#include "contracts/TransformWork.h"
#include "services/providers/Answers.h"
#include "services/providers/transforms/ConvertPdf.h"
#include "services/providers/transforms/Stages.h"
#include "services/providers/ui/SettingsDialogs.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/PumpingWait.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace providers;

namespace {

constexpr std::uint32_t kZipFollows = 1; // the mode of a stage; 3: the files go out as they are

bool HasTransform(const Session& session, std::uint32_t providerId, ProviderKind kind) {
    return kind == ProviderKind::Transform && session.catalogue.Contains(providerId, kind);
}

// The settings of a transform that this module has. Null when it has none.
const SettingsRow* SettingsRowOf(const Session& session, std::uint32_t providerId,
                                 ProviderKind kind) {
    if (!HasTransform(session, providerId, kind)) return nullptr;
    return SettingsOf(static_cast<TransformId>(providerId));
}

// Runs a stage of the manager. `Wait` is how its thread waits.
template <class Wait, class Work>
Bool InStage(ProviderManagerHandle manager, HWND owner, std::uint32_t mode, Work work) noexcept {
    if (!manager) return false;
    return ObLib::Guarded<Bool>(false, [&]() -> Bool {
        return manager->Stage([&](Session& session) {
            Wait wait(session.ended.Get(), owner);
            if (wait.IsEnded()) return false;
            const ProviderSet selected = session.selection.Transforms();
            const RunPlan& plan = session.run.Plan(session.settings);
            StageCall call{session.run, session.settings,    selected,
                           plan,        mode == kZipFollows, wait};
            return static_cast<bool>(work(session, call));
        });
    });
}

// The paths of an array. Nothing when it or one of them is null: a stage that ran on a shorter list
// would let the others through.
std::optional<std::vector<std::wstring>> Paths(const wchar_t* const* paths, std::uint32_t count) {
    std::vector<std::wstring> list;
    if (!paths) return {};
    for (std::uint32_t index = 0; index < count; ++index) {
        if (!paths[index]) return {};
        list.emplace_back(paths[index]);
    }
    return list;
}

// Fills as many buffers as there are results. A result that doesn't fit was refused before the
// work.
std::uint32_t HandOver(const std::vector<std::wstring>& results, wchar_t* const* buffers,
                       std::uint32_t capacity) {
    std::uint32_t count = 0;
    for (const std::wstring& result : results) {
        if (!buffers || !buffers[count] || result.size() >= capacity) break;
        std::wmemcpy(buffers[count], result.c_str(), result.size() + 1);
        ++count;
    }
    return count;
}

} // namespace

extern "C" {

void ShowProviderOptions(ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind,
                         void*, HWND owner) {
    WithSession(manager, [&](const Session& session) {
        const SettingsRow* const row = SettingsRowOf(session, providerId, kind);
        return row && row->change(session.settings, owner);
    });
}

Bool ShowProviderOptionsWhenNoOptionsSet(ProviderManagerHandle manager, std::uint32_t providerId,
                                         ProviderKind kind, void*, HWND owner) {
    return WithSession(manager, [&](const Session& session) {
        if (!HasTransform(session, providerId, kind)) return false;
        // A transform without settings lacks none.
        const SettingsRow* const row = SettingsRowOf(session, providerId, kind);
        return !row || row->areStored(session.settings) || row->change(session.settings, owner);
    });
}

// Every transform of this module needs the work process and nothing else: PDFs of pictures can be
// made without an office program.
Bool GetReadyForConvert(HWND owner, ProviderManagerHandle manager, std::uint32_t providerId,
                        ProviderKind kind) {
    return WithSession(manager, [&](Session& session) {
        if (!session.catalogue.Contains(providerId, kind) || kind != ProviderKind::Transform) {
            return false;
        }
        const auto program = ObLib::PathBesideModule(ObLib::ThisModule(), kTransformWorkFileName);
        if (!program || GetFileAttributesW(program->c_str()) == INVALID_FILE_ATTRIBUTES) {
            ShowSentence(owner, OwnText(OB_TEXT_NOT_READY));
            return false;
        }
        if (static_cast<TransformId>(providerId) == TransformId::ConvertPdf)
            NoteMissingSuite(session.run, session.settings, owner);
        return true;
    });
}

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

void GetSelectedTransformSummary(ProviderManagerHandle manager, std::int32_t* beforeList,
                                 std::int32_t* afterList, std::int32_t* perFile,
                                 std::int32_t* final) {
    const StageCounts counts = InSession(manager, StageCounts(), [](Session& session) {
        const RunPlan* const plan = ObLib::Guarded<const RunPlan*>(
            nullptr, [&] { return &session.run.Plan(session.settings); });
        return CountStages(session.selection.Transforms(), plan);
    });
    if (beforeList) *beforeList = counts.beforeList;
    if (afterList) *afterList = counts.afterList;
    if (perFile) *perFile = counts.perFile;
    if (final) *final = counts.final;
}

void SetProviderTarget(ProviderManagerHandle manager, const wchar_t* path) {
    InSession(manager, 0, [path](Session& session) {
        session.target->clear(); // also when there is no memory for the path
        if (path) *session.target = path;
        return 0;
    });
}

// The path as it was set until a transform changes it. The text is valid until the next call of
// this entry or SetProviderTarget. It needs no memory: the caller takes an empty path for no file.
const wchar_t* GetProviderTarget(ProviderManagerHandle manager) {
    if (!manager) return L"";
    return ObLib::Guarded<const wchar_t*>(L"", [manager] { return manager->HandOutTarget(); });
}

// On the transform worker's thread.
Bool ExecuteTransforms(ProviderManagerHandle manager, void*, HWND owner, const wchar_t* folder,
                       std::uint32_t, std::uint32_t mode, void*, void*) {
    return InStage<CallWait>(manager, owner, mode, [&](Session& session, StageCall& call) {
        std::wstring path = *session.target;
        if (!RunFileStage(call, path, folder ? folder : L"")) return false;
        // A text that was handed out stays valid when the file keeps its path.
        if (path != *session.target) *session.target = path;
        return true;
    });
}

// On the transform worker's thread. The count stays as it came in when the stage fails: the
// caller's files are still the caller's files.
Bool ExecutePostTransforms(ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,
                           std::uint32_t* count, std::uint32_t mode, void*, void*) {
    return InStage<CallWait>(manager, owner, mode, [&](Session&, StageCall& call) {
        const auto list = count ? Paths(paths, *count) : std::nullopt;
        if (!list || !RunListStage(call, *list)) return false;
        *count = static_cast<std::uint32_t>(call.run.record.results.size());
        return true;
    });
}

// On the dialog's thread, which stays alive.
Bool ExecuteFinalTransforms(ProviderManagerHandle manager, HWND owner, const wchar_t* const* paths,
                            std::uint32_t count, std::uint32_t mode, void*, void*) {
    return InStage<PumpingWait>(manager, owner, mode, [&](Session&, StageCall& call) {
        const auto list = Paths(paths, count);
        return list && RunFinalStage(call, *list);
    });
}

void GetTargetFile(ProviderManagerHandle manager, wchar_t* const* buffers, std::uint32_t* count,
                   std::uint32_t capacity) {
    if (!count) return;
    *count = InSession(manager, std::uint32_t{0}, [&](Session& session) {
        return HandOver(session.run.record.results, buffers, capacity);
    });
}

} // extern "C"

OB_PROVIDER_MANAGER_TRANSFORMS(PROVIDERS_CHECK_ENTRY)

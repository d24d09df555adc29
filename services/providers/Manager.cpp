#include "services/providers/Manager.h"

#include <utility>

#include "ObLib/Src/Win32/ModulePath.h"
#include "contracts/TransformWork.h"
#include "services/providers/transforms/Stages.h"

namespace {

using namespace providers;

WorkSettings OwnWorkProcess() {
    WorkSettings settings;
    settings.program =
        ObLib::PathBesideModule(ObLib::ThisModule(), obcontract::kTransformWorkFileName)
            .value_or(std::wstring());
    return settings;
}

void AddTransforms(Catalogue& catalogue) {
    for (const TransformRow& row : TransformRows()) {
        if (!row.IsBuilt()) continue;
        catalogue.Add(
            {static_cast<std::uint32_t>(row.id), obcontract::ProviderKind::Transform, nullptr});
    }
}

void AddStorage(Catalogue& catalogue, const StorageHalf& storage) {
    for (const auto& instance : storage.Instances()) {
        catalogue.Add(
            {instance->Provider().Id(), obcontract::ProviderKind::Storage, instance.get()});
    }
}

// A stage may show a box to the user who has left. Only boxes and dialogs of the module can be open
// on the thread of a worker.
BOOL CALLBACK CloseDialog(HWND window, LPARAM) noexcept {
    wchar_t name[16] = L"";
    GetClassNameW(window, name, 16);
    if (std::wstring_view(name) == L"#32770") PostMessageW(window, WM_CLOSE, 0, 0);
    return TRUE;
}

// Lets other threads' messages to this thread through, without taking its own out of the queue.
void AnswerSentMessages() noexcept {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

} // namespace

obcontract::ObExtensionsManager::~ObExtensionsManager() {
    End();
    // The stage uses this object until its end.
    AwaitStage(INFINITE);
}

void obcontract::ObExtensionsManager::Begin(std::int64_t hive, const wchar_t* key,
                                            StoragePartsMaker make) {
    End();
    const auto root = PredefinedKey(hive);
    if (!root || !key || *key == L'\0') return;
    auto session = std::make_shared<Session>(*root, key, OwnWorkProcess(), make);
    AddStorage(session->catalogue, session->storage);
    AddTransforms(session->catalogue);
    const std::lock_guard guard(state_->lock);
    if (!state_->idle) state_->idle.Reset(CreateEventW(nullptr, TRUE, TRUE, nullptr));
    if (state_->idle && session->ended) state_->session = std::move(session);
}

void obcontract::ObExtensionsManager::End() noexcept {
    constexpr DWORD kLimit = 5000; // milliseconds
    std::shared_ptr<Session> session;
    {
        const std::lock_guard guard(state_->lock);
        session = std::move(state_->session);
    }
    if (!session) return;
    SetEvent(session->ended.Get());
    session->storage.End();
    AwaitStage(kLimit);
    session->run.unfinished.DeleteAll();
}

// A stage of this very thread can't be waited for: it is further down on the stack.
void obcontract::ObExtensionsManager::AwaitStage(DWORD limit) noexcept {
    constexpr DWORD kStep = 50; // milliseconds
    HANDLE idle = nullptr;
    DWORD thread = 0;
    {
        const std::lock_guard guard(state_->lock);
        idle = state_->idle.Get();
        thread = state_->stageThread;
    }
    if (thread == 0 || thread == GetCurrentThreadId()) return;
    for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < limit;) {
        if (MsgWaitForMultipleObjects(1, &idle, FALSE, kStep, QS_SENDMESSAGE) == WAIT_OBJECT_0) {
            return;
        }
        AnswerSentMessages();
        EnumThreadWindows(thread, &CloseDialog, 0);
    }
}

obcontract::ObExtensionsManager::RunningStage::RunningStage(std::shared_ptr<State> state)
    : state_(std::move(state)) {
    const std::lock_guard guard(state_->lock);
    if (!state_->session || state_->stageThread != 0) return;
    state_->stageThread = GetCurrentThreadId();
    ResetEvent(state_->idle.Get());
    session_ = state_->session;
}

obcontract::ObExtensionsManager::RunningStage::~RunningStage() {
    if (!session_) return;
    session_.reset(); // may be the last owner: the work process ends before the stage does
    const std::lock_guard guard(state_->lock);
    state_->stageThread = 0;
    SetEvent(state_->idle.Get());
}

const wchar_t* obcontract::ObExtensionsManager::HandOutTarget() {
    const std::lock_guard guard(state_->lock);
    if (!state_->session) return L"";
    handedOut_ = state_->session->target;
    return handedOut_->c_str();
}

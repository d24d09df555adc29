// One manager: the object that a handle of CreateObExtensionsManager leads to.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"
#include "services/providers/AccountStore.h"
#include "services/providers/Catalogue.h"
#include "services/providers/Selection.h"
#include "services/providers/settings/TransformSettings.h"
#include "services/providers/storage/StorageHalf.h"
#include "services/providers/transforms/StageCall.h"

namespace providers {

// Everything that lasts from Init to Deinit.
struct Session {
    Session(HKEY hive, const std::wstring& key, WorkSettings work, StoragePartsMaker make)
        : accounts(hive, key), settings(hive, key), run(std::move(work)), storage(hive, key, make),
          ended(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    AccountStore accounts;
    TransformSettings settings;
    TransformRun run;
    StorageHalf storage;
    ObLib::UniqueKernelHandle ended; // an event, set once by Deinit
    Catalogue catalogue;
    Selection selection;
    // Path of the file that the next transform is for. Never null; the manager shares it, as a text
    // that was handed out stays valid after the session.
    std::shared_ptr<std::wstring> target = std::make_shared<std::wstring>();
};

} // namespace providers

// The opaque record of the contract. It answers nothing outside a session. Its lock is for the one
// case in which two threads meet: the transform worker calls a stage while the dialog's thread ends
// the session. A quick call keeps the lock; a stage keeps the session alive and not the lock, so
// that it can be ended. One stage runs at a time; another one is refused.
struct obcontract::ObExtensionsManager {
public:
    ObExtensionsManager() : state_(std::make_shared<State>()) {}
    ~ObExtensionsManager();
    ObExtensionsManager(const ObExtensionsManager&) = delete;
    ObExtensionsManager& operator=(const ObExtensionsManager&) = delete;

    // Begins a session on the state below `key`, with the storage providers that `make` makes; one
    // that runs already ends. Without a predefined hive or a key the manager stays without a
    // session.
    void Begin(std::int64_t hive, const wchar_t* key, providers::StoragePartsMaker make);

    // Ends the session and a stage that runs on another thread, for which it waits a while: longer
    // than a stage takes to end, except for one that waits for the user. Then deletes what the
    // stage left unfinished. The messages that other threads send to this one are answered
    // meanwhile.
    void End() noexcept;

    // Runs quick work on the session, under the lock. `otherwise` outside a session.
    template <class Result, class Work>
    Result Quickly(Result otherwise, Work work) {
        const std::lock_guard guard(state_->lock);
        return state_->session ? static_cast<Result>(work(*state_->session)) : otherwise;
    }

    // The session, kept alive: for dialogs, which wait for the user. Null outside a session.
    std::shared_ptr<providers::Session> KeptSession() {
        const std::lock_guard guard(state_->lock);
        return state_->session;
    }

    // Runs a stage and returns its result. False outside a session and while another stage runs.
    template <class Work>
    bool Stage(Work work) {
        const RunningStage stage(state_);
        return stage.Session() && work(*stage.Session());
    }

    // Hands out the target, empty outside a session. The text stays valid until the target is
    // changed or handed out again, also after the session. Needs no memory.
    const wchar_t* HandOutTarget();

private:
    // A stage that runs keeps this alive: its end is the last thing that it touches.
    struct State {
        std::mutex lock; // of everything below
        std::shared_ptr<providers::Session> session;
        ObLib::UniqueKernelHandle idle; // an event, set while no stage runs; made by Begin
        DWORD stageThread = 0;          // 0: no stage runs
    };

    // Enters a stage if there is a session and no other stage, and leaves it at the scope's end.
    class RunningStage {
    public:
        explicit RunningStage(std::shared_ptr<State> state);
        ~RunningStage();
        RunningStage(const RunningStage&) = delete;
        RunningStage& operator=(const RunningStage&) = delete;

        providers::Session* Session() const noexcept { return session_.get(); }

    private:
        std::shared_ptr<State> state_;
        std::shared_ptr<providers::Session> session_;
    };

    void AwaitStage(DWORD limit) noexcept;

    std::shared_ptr<State> state_;
    std::shared_ptr<const std::wstring> handedOut_; // a target; under the lock of the state
};

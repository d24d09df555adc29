// Runs of the transforms with the fake provider manager, the real progress dialog and a real worker
// thread. What the dialog shows is written down among the calls of the fakes, so that one list has
// everything in order.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/transforms/DoTransformsProgress.h"
#include "OBCore/transforms/Transforms.h"
#include "tests/support/HeldCall.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace obtest {

// The visible progress dialog of this process, or null.
HWND FindTransformDialog();

// A second thread that waits for the dialog and operates it; joined at the end. If `act` leaves the
// dialog open, the run has to end it.
class TransformUiDriver {
public:
    explicit TransformUiDriver(std::function<void(HWND dialog)> act);
    ~TransformUiDriver() { Join(); }
    TransformUiDriver(const TransformUiDriver&) = delete;
    TransformUiDriver& operator=(const TransformUiDriver&) = delete;

    // Joins; true when the dialog was there.
    bool SawDialog();

private:
    void Join();

    bool saw_ = false; // read after the join
    std::thread thread_;
};

class TransformsFixture : public RunFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    // The provider is supported, and the option wants it.
    void Want(bool obcore::OBOptions::*option, int providerId);
    // One that works on each file.
    void WantResize() { Want(&obcore::OBOptions::AutoResizeImages, 2); }
    static void Stages(const wchar_t* summary) {
        FakeModules::Answer(L"GetSelectedTransformSummary", summary);
    }
    static void Answer(const wchar_t* key, const wchar_t* answer) {
        FakeModules::Answer(key, answer);
    }

    // Runs with files_ in the folder C:\t\.
    bool Run() { return obcore::CompressUtils::RunTransforms(job_, files_, L"C:\\t\\"); }

    // Waits for the end of every worker that a run has started. False when one doesn't end.
    static bool JoinWorkers();

    // What was called and shown, in order. Windows and threads have names: dialog, owner; [dialog],
    // [worker]. Calls of the archive service have no thread.
    Lines Written() const;
    // Those that begin with one of these.
    Lines Written(const Lines& beginnings) const;

    // The dialog of the last run; null when none was opened.
    static HWND LastDialog();

    // What CreateThread returned for the last worker, and that thread's id.
    static HANDLE LastThread();
    static DWORD LastThreadId();

    Lines files_;
};

// While this exists, one call of the code under test fails, or the worker ends the dialog with 1 at
// the moment of the user's cancel.
enum class Fault { None, NoThread, MemoryForThread, MemoryInWorker, EndsAtCancel };
class FailingCall {
public:
    explicit FailingCall(Fault fault);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
};

} // namespace obtest

#include "OBCore/modules/ManagerCalls.h"

#include <algorithm>
#include <mutex>
#include <vector>

using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

constexpr ULONGLONG kLimit = 10000; // milliseconds
constexpr DWORD kStep = 10;

std::mutex callsLock;
std::vector<ProviderManagerHandle> runningCalls; // the manager of each

bool HasCall(ProviderManagerHandle manager) {
    const std::lock_guard guard(callsLock);
    return std::ranges::find(runningCalls, manager) != runningCalls.end();
}

// A running call may wait for the answer to a message that it has sent to a window of this thread.
void AnswerSentMessages() {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, kStep, QS_SENDMESSAGE);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

} // namespace

ManagerCall::ManagerCall(ProviderManagerHandle manager) : manager_(manager) {
    const std::lock_guard guard(callsLock);
    runningCalls.push_back(manager);
}

ManagerCall::~ManagerCall() {
    const std::lock_guard guard(callsLock);
    runningCalls.erase(std::ranges::find(runningCalls, manager_));
}

bool AwaitManagerCalls(ProviderManagerHandle manager) {
    const ULONGLONG begin = GetTickCount64();
    while (HasCall(manager)) {
        if (GetTickCount64() - begin > kLimit) return false;
        AnswerSentMessages();
    }
    return true;
}

} // namespace obcore

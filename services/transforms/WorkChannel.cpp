#include "services/transforms/WorkChannel.h"

#include <algorithm>
#include <cstring>

#include "ObLib/Src/Win32/WholeTransfer.h"

namespace transforms {
namespace {

using namespace obcontract;

bool IsRequest(const WorkHeader& header) {
    const bool known = header.kind == WorkKind::Clean || header.kind == WorkKind::CheckClean;
    return header.magic == kWorkMagic && known && header.size == sizeof(CleanRequest) &&
           header.reserved == 0;
}

// Whether the handles are what the kind requires.
bool HasItsFiles(const WorkRequest& request) {
    const bool writes = request.kind == WorkKind::Clean;
    if (!request.source || GetFileType(request.source.Get()) != FILE_TYPE_DISK) return false;
    if (static_cast<bool>(request.target) != writes) return false;
    return !writes || GetFileType(request.target.Get()) == FILE_TYPE_DISK;
}

HANDLE HandleOf(std::uint64_t value) { return reinterpret_cast<HANDLE>(value); }

} // namespace

std::optional<WorkRequest> WorkChannel::Next() {
    WorkHeader header;
    CleanRequest payload;
    if (!ObLib::ReadWhole(requests_.Get(), &header, sizeof header) || !IsRequest(header)) return {};
    if (!ObLib::ReadWhole(requests_.Get(), &payload, sizeof payload)) return {};
    WorkRequest request;
    request.kind = header.kind;
    request.source.Reset(HandleOf(payload.files.source));
    request.target.Reset(HandleOf(payload.files.target));
    if (payload.reserved != 0 || !HasItsFiles(request)) return {};
    return request;
}

// Header and payload are written at once: no other thread writes, and a reader sees no half header
// for longer than the system takes.
template <class Payload>
bool WorkChannel::Send(WorkKind kind, const Payload& payload) noexcept {
    static_assert(sizeof(Payload) <= kLargestWorkPayload);
    struct {
        WorkHeader header;
        Payload payload;
    } record{{kWorkMagic, kind, sizeof(Payload), 0}, payload};
    static_assert(sizeof record == sizeof(WorkHeader) + sizeof(Payload));
    return ObLib::WriteWhole(replies_.Get(), &record, sizeof record);
}

bool WorkChannel::SendProgress(std::uint64_t done, std::uint64_t total) noexcept {
    return Send(WorkKind::Progress, WorkProgress{done, total});
}

bool WorkChannel::SendFinding(std::string_view key, std::uint32_t count) noexcept {
    WorkFinding finding{};
    finding.count = count;
    std::memcpy(finding.key, key.data(), std::min(key.size(), kWorkKeyCapacity - 1));
    return Send(WorkKind::Finding, finding);
}

bool WorkChannel::SendEnd(const WorkEnd& end) noexcept {
    if (end.failure) return Send(WorkKind::Failed, WorkFailed{*end.failure, 0});
    return Send(WorkKind::Done, WorkDone{end.outcome, 0, end.size});
}

} // namespace transforms

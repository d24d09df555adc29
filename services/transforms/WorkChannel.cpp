#include "services/transforms/WorkChannel.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "ObLib/Src/Win32/WholeTransfer.h"

namespace transforms {
namespace {

using namespace obcontract;

// Null for a header that isn't a request's.
const WorkRequestForm* FormOf(const WorkHeader& header) {
    if (header.magic != kWorkMagic || header.reserved != 0) return nullptr;
    const auto* const form = std::ranges::find(kWorkRequests, header.kind, &WorkRequestForm::kind);
    if (form == std::end(kWorkRequests) || header.size < sizeof(WorkFiles)) return nullptr;
    const std::uint32_t settings = header.size - std::uint32_t{sizeof(WorkFiles)};
    return settings >= form->least && settings <= form->most ? form : nullptr;
}

// Whether the handle is a file, or none where the kind has none.
bool IsAsWanted(HANDLE file, bool wanted) {
    return (file != nullptr) == wanted && (!wanted || GetFileType(file) == FILE_TYPE_DISK);
}

HANDLE HandleOf(std::uint64_t value) { return reinterpret_cast<HANDLE>(value); }

HANDLE HandleAtEnd(const std::vector<std::byte>& settings) {
    std::uint64_t value = 0;
    std::memcpy(&value, settings.data() + settings.size() - sizeof value, sizeof value);
    return HandleOf(value);
}

} // namespace

// The record's payload, and the header of the request after it.
bool WorkChannel::ReadPassword(WorkHeader& header, ObLib::Secret& password) {
    const bool isSound = header.magic == kWorkMagic && header.reserved == 0 && header.size > 0 &&
                         header.size <= kMostPasswordBytes;
    ObLib::WipedBuffer<char, kMostPasswordBytes + 1> text;
    if (!isSound || !ObLib::ReadWhole(requests_.Get(), text.data, header.size)) return false;
    if (std::memchr(text.data, 0, header.size)) return false;
    password = ObLib::Secret(text.data);
    return ObLib::ReadWhole(requests_.Get(), &header, sizeof header);
}

std::optional<WorkRequest> WorkChannel::Next() {
    WorkHeader header;
    if (!ObLib::ReadWhole(requests_.Get(), &header, sizeof header)) return {};
    ObLib::Secret password;
    if (header.kind == WorkKind::Password && !ReadPassword(header, password)) return {};
    const WorkRequestForm* const form = FormOf(header);
    WorkFiles files;
    if (!form || !ObLib::ReadWhole(requests_.Get(), &files, sizeof files)) return {};
    WorkRequest request;
    request.kind = header.kind;
    request.password = std::move(password);
    request.source.Reset(HandleOf(files.source));
    request.target.Reset(HandleOf(files.target));
    request.settings.resize(header.size - sizeof files);
    if (!ObLib::ReadWhole(requests_.Get(), request.settings.data(), request.settings.size())) {
        return {};
    }
    if (form->hasPicture) request.picture.Reset(HandleAtEnd(request.settings));
    if (!IsAsWanted(request.picture.Get(), form->hasPicture) ||
        !IsAsWanted(request.source.Get(), form->hasSource) ||
        !IsAsWanted(request.target.Get(), form->hasTarget)) {
        return {};
    }
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

bool WorkChannel::SendProgress(std::uint64_t done, std::uint64_t total,
                               std::uint32_t number) noexcept {
    return Send(WorkKind::Progress, WorkProgress{done, total, number, 0});
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

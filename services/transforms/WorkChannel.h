// The work process's side of the two pipes: the validating reader of requests, and the replies.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObLib/Src/Win32/Secret.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/TransformWork.h"

namespace transforms {

// A request with its files, which are closed with it.
struct WorkRequest {
    obcontract::WorkKind kind{};
    ObLib::UniqueKernelHandle source;  // empty when the request reads no file
    ObLib::UniqueKernelHandle target;  // empty when the request writes no file
    ObLib::UniqueKernelHandle picture; // empty when the kind has none
    std::vector<std::byte> settings;   // as many bytes as the kind allows
    ObLib::Secret password;            // empty without a record of one before the request

    // The settings of a kind that has only this record.
    template <class Record>
    Record SettingsAs() const noexcept {
        Record record{};
        std::memcpy(&record, settings.data(), std::min(sizeof record, settings.size()));
        return record;
    }

    // The text after the settings of a kind that ends with one; nothing for half a unit and for a
    // NUL, which no text of the contract has. Throws std::bad_alloc.
    template <class Record>
    std::optional<std::wstring> TextAfter() const {
        if (settings.size() < sizeof(Record)) return {};
        const std::size_t bytes = settings.size() - sizeof(Record);
        if (bytes % sizeof(wchar_t) != 0) return {};
        std::wstring text(bytes / sizeof(wchar_t), L'\0');
        std::memcpy(text.data(), settings.data() + sizeof(Record), bytes);
        if (text.find(L'\0') != text.npos) return {};
        return text;
    }
};

// The last reply of a request: a failure, or an outcome with the bytes in the target.
struct WorkEnd {
    explicit WorkEnd(obcontract::WorkFailure why) noexcept : failure(why) {}
    explicit WorkEnd(obcontract::WorkOutcome what, std::uint64_t bytes = 0) noexcept
        : outcome(what), size(bytes) {}

    std::optional<obcontract::WorkFailure> failure;
    obcontract::WorkOutcome outcome{};
    std::uint64_t size = 0;
};

// Used by one thread. The pipes belong to the channel.
class WorkChannel {
public:
    WorkChannel(ObLib::UniqueKernelHandle requests, ObLib::UniqueKernelHandle replies) noexcept
        : requests_(std::move(requests)), replies_(std::move(replies)) {}

    // Waits for the next request. Nothing at the end of the pipe and for a record that isn't valid;
    // the process then ends. Whoever carries the request out checks the values in its settings.
    std::optional<WorkRequest> Next();

    // Each returns false when the manager no longer reads; the process then ends.
    bool SendProgress(std::uint64_t done, std::uint64_t total, std::uint32_t number = 0) noexcept;
    // A key that doesn't fit is cut, so that it is still reported.
    bool SendFinding(std::string_view key, std::uint32_t count) noexcept;
    bool SendEnd(const WorkEnd& end) noexcept;

private:
    bool ReadPassword(obcontract::WorkHeader& next, ObLib::Secret& password);
    template <class Payload>
    bool Send(obcontract::WorkKind kind, const Payload& payload) noexcept;

    ObLib::UniqueKernelHandle requests_;
    ObLib::UniqueKernelHandle replies_;
};

} // namespace transforms

// What a work process that a hostile file took over may send: each byte string as records, each in
// a header and its payload. Whatever comes, what the manager keeps of it is within its limits.
#include <cstring>
#include <span>
#include <string_view>

#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/Require.h"
#include "services/providers/worker/ReplyReader.h"

using namespace obcontract;
using namespace providers;

namespace {

constexpr WorkKind kKinds[] = {WorkKind::Progress, WorkKind::Finding, WorkKind::Done,
                               WorkKind::Failed, WorkKind::Clean};
constexpr std::string_view kOfKeys = "abcdefghijklmnopqrstuvwxyz0123456789.-";

void CheckReport(const ReplyReader& reader) {
    const WorkReport& report = reader.Report();
    Require(report.found.size() <= kMostWorkFindings, "no more findings than a request may have");
    for (const WorkFound& found : report.found) {
        Require(found.count != 0 && !found.key.empty(), "a finding has a key and a count");
        Require(found.key.size() < kWorkKeyCapacity, "a key ends within its field");
        Require(found.key.find_first_not_of(kOfKeys) == std::string::npos, "and is plain text");
    }
    Require(reader.Progress().done <= reader.Progress().total, "no more is done than there is");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzInput input(bytes, size);
    ReplyReader reader;
    reader.Begin();
    while (!input.IsUsedUp()) {
        const WorkHeader header{kWorkMagic, input.Pick(kKinds),
                                static_cast<std::uint32_t>(input.Byte()), 0};
        const auto payload = ReplyPayload(header);
        if (!payload) continue;
        std::vector<std::byte> record(*payload);
        const std::size_t take = std::min(record.size(), input.Left());
        std::memcpy(record.data(), input.Bytes(), take);
        for (std::size_t i = 0; i < take; ++i) input.Byte();
        const bool wasComplete = reader.IsComplete();
        const bool isTaken = reader.Take(header.kind, record);
        Require(!wasComplete || !isTaken, "nothing follows a request's last record");
        CheckReport(reader);
        if (!isTaken) break;
    }
    return 0;
}

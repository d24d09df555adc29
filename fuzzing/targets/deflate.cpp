// The finder of a deflate stream's last block, beside a plain reading of the format: over any
// bytes, over any bytes put as a block after others, and over stored blocks of any number and size.
#include <algorithm>
#include <memory>
#include <vector>

#include "fuzzing/support/FuzzInput.h"
#include "fuzzing/support/PlainDeflate.h"
#include "fuzzing/support/Require.h"
#include "services/archive/compress/LastDeflateBlock.h"

namespace {

// A copy of exactly this size, so that the sanitizer sees a read past its end.
void RequireSame(const std::vector<std::uint8_t>& stream) {
    const auto exact = std::make_unique<std::uint8_t[]>(stream.size());
    std::copy(stream.begin(), stream.end(), exact.get());
    const std::span<const std::uint8_t> bytes(exact.get(), stream.size());
    const auto found = obarchive::FindLastDeflateBlock(bytes);
    const auto plain = FollowDeflate(bytes);
    Require(found.has_value() == plain.has_value(), "both take the stream, or both refuse it");
    if (!found) return;
    Require(found->headerBit == plain->headerBit, "the last block begins at the same bit");
    Require(found->endBit == plain->endBit, "the last block ends at the same bit");
    Require(found->endBit <= std::uint64_t{stream.size()} * 8, "it ends within the stream");
}

void AppendStored(std::vector<std::uint8_t>& stream, std::size_t size, bool last) {
    stream.push_back(last ? 1 : 0);
    for (const std::size_t number : {size, size ^ 0xFFFF}) {
        stream.push_back(static_cast<std::uint8_t>(number));
        stream.push_back(static_cast<std::uint8_t>(number >> 8));
    }
    stream.resize(stream.size() + size, 0xA5);
}

// Where the last block is, is known without any reading.
void CheckStoredChain(FuzzInput input) {
    std::vector<std::uint8_t> stream;
    for (std::uint32_t blocks = input.Below(8); blocks != 0; --blocks)
        AppendStored(stream, input.Byte() * std::size_t{17}, false);
    const std::uint64_t header = std::uint64_t{stream.size()} * 8;
    AppendStored(stream, input.Byte(), true);
    const std::uint64_t end = std::uint64_t{stream.size()} * 8;
    stream.insert(stream.end(), input.Bytes(), input.Bytes() + input.Left());
    const auto found = obarchive::FindLastDeflateBlock(stream);
    Require(found && found->headerBit == header && found->endBit == end,
            "the last of stored blocks is found, whatever comes after it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::vector<std::uint8_t> stream(bytes, bytes + size);
    RequireSame(stream);
    if (!stream.empty()) {
        stream.front() |= 1; // mostly a single block
        RequireSame(stream);
    }
    std::vector<std::uint8_t> after;
    AppendStored(after, 3, false);
    after.insert(after.end(), stream.begin(), stream.end());
    RequireSame(after);
    CheckStoredChain(FuzzInput(bytes, size));
    return 0;
}

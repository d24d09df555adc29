// A deflate stream followed by the letter of its definition, bit by bit and code by code.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

struct PlainLastBlock {
    std::uint64_t headerBit = 0;
    std::uint64_t endBit = 0;
};

// Where the stream's last block begins and ends; nothing when the stream isn't well-formed.
std::optional<PlainLastBlock> FollowDeflate(std::span<const std::uint8_t> stream);

// A block between two pages that can't be touched, and its bytes by their offsets in the contract:
// tests look at the wire, not at the names that the code under test gives to it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/ExchangeBlock.h"

namespace obtest {

inline constexpr std::int32_t kBlockBytes = 65536;

class GuardedBlock {
public:
    // All bytes are `fill`.
    explicit GuardedBlock(std::uint8_t fill = 0) {
        constexpr std::size_t kGuard = 65536;
        region_ = static_cast<std::uint8_t*>(
            VirtualAlloc(nullptr, kBlockBytes + 2 * kGuard, MEM_RESERVE, PAGE_NOACCESS));
        bytes_ = region_ + kGuard;
        if (!region_ || !VirtualAlloc(bytes_, kBlockBytes, MEM_COMMIT, PAGE_READWRITE))
            throw std::runtime_error("no memory for a block");
        std::memset(bytes_, fill, kBlockBytes);
    }
    ~GuardedBlock() { VirtualFree(region_, 0, MEM_RELEASE); }
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;

    obcontract::ExchangeBlock& operator*() {
        return *reinterpret_cast<obcontract::ExchangeBlock*>(bytes_);
    }
    std::uint8_t* Bytes() { return bytes_; }
    std::vector<std::uint8_t> Copy() const { return {bytes_, bytes_ + kBlockBytes}; }

    std::uint8_t U8(std::int32_t offset) const { return Get<std::uint8_t>(offset); }
    std::uint16_t U16(std::int32_t offset) const { return Get<std::uint16_t>(offset); }
    std::int32_t I32(std::int32_t offset) const { return Get<std::int32_t>(offset); }

    void Poke8(std::int32_t offset, std::uint8_t value) { Put(offset, &value, 1); }
    void Poke32(std::int32_t offset, std::int32_t value) { Put(offset, &value, 4); }
    void PutUnits(std::int32_t offset, std::wstring_view units) {
        Put(offset, units.data(), units.size() * 2);
    }

    // `count` 16-bit units from an offset, also odd ones.
    std::wstring Units(std::int32_t offset, std::size_t count) const {
        std::wstring units(count, L'\0');
        std::memcpy(units.data(), bytes_ + offset, count * 2);
        return units;
    }

private:
    template <class Number>
    Number Get(std::int32_t offset) const {
        Number number;
        std::memcpy(&number, bytes_ + offset, sizeof(number));
        return number;
    }
    void Put(std::int32_t offset, const void* source, std::size_t count) {
        std::memcpy(bytes_ + offset, source, count);
    }

    std::uint8_t* region_ = nullptr;
    std::uint8_t* bytes_ = nullptr;
};

// A text of known length in which every unit differs from the adjacent ones.
inline std::wstring LongText(std::size_t length) {
    std::wstring text(length, L'\0');
    for (std::size_t index = 0; index < length; ++index)
        text[index] = static_cast<wchar_t>(L'A' + index % 53);
    return text;
}

// Units with NULs in them, from a literal.
template <std::size_t Size>
std::wstring Raw(const wchar_t (&literal)[Size]) {
    return std::wstring(literal, Size - 1);
}

} // namespace obtest

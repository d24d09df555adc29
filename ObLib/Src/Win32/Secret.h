// Passwords in memory, wiped when they are no longer needed.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace ObLib {

// NUL-terminated bytes, UTF-8 as the prompts make them. Each copy wipes itself. Any thread.
class Secret {
public:
    Secret() = default;
    explicit Secret(const char* text) {
        if (text && *text) bytes_.assign(text, text + std::strlen(text) + 1);
    }
    Secret(const Secret&) = default;
    Secret(Secret&& other) noexcept { bytes_.swap(other.bytes_); }
    Secret& operator=(Secret other) noexcept {
        bytes_.swap(other.bytes_);
        return *this;
    }
    ~Secret() {
        if (!bytes_.empty()) SecureZeroMemory(bytes_.data(), bytes_.size());
    }

    bool Empty() const noexcept { return bytes_.empty(); }
    const char* Text() const noexcept { return bytes_.empty() ? "" : bytes_.data(); }
    // Without the NUL.
    std::span<const std::uint8_t> Bytes() const noexcept {
        return {reinterpret_cast<const std::uint8_t*>(Text()), std::strlen(Text())};
    }

private:
    std::vector<char> bytes_; // empty, or with its NUL; never grown in place
};

// Wipes a stack buffer when its scope is left.
template <class Element, std::size_t Count>
struct WipedBuffer {
    WipedBuffer() = default;
    WipedBuffer(const WipedBuffer&) = delete;
    WipedBuffer& operator=(const WipedBuffer&) = delete;
    ~WipedBuffer() { SecureZeroMemory(data, sizeof data); }

    Element data[Count] = {};
};

} // namespace ObLib

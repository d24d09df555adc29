// A password in memory that is wiped when it is no longer needed.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace obarchive {

// NUL-terminated bytes, UTF-8 by this service's prompt. Each copy wipes itself.
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

// Clears the registers that a copy of a secret went through. They would live on until they are used
// for something else, and the system may write them down with a thread's state. Those beyond are
// kept over calls, so whoever uses them puts back what was in them; who works with wider ones
// clears them itself.
inline void ForgetRegisters() noexcept {
    asm volatile("pxor %%xmm0, %%xmm0\n\t"
                 "pxor %%xmm1, %%xmm1\n\t"
                 "pxor %%xmm2, %%xmm2\n\t"
                 "pxor %%xmm3, %%xmm3\n\t"
                 "pxor %%xmm4, %%xmm4\n\t"
                 "pxor %%xmm5, %%xmm5"
                 :
                 :
                 : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "memory"); // not before the copy
}

// Wipes a stack buffer when its scope is left.
template <class Element, std::size_t Count>
struct WipedBuffer {
    WipedBuffer() = default;
    WipedBuffer(const WipedBuffer&) = delete;
    WipedBuffer& operator=(const WipedBuffer&) = delete;
    ~WipedBuffer() { SecureZeroMemory(data, sizeof data); }

    Element data[Count] = {};
};

} // namespace obarchive

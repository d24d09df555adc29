// The fuzzer's bytes as what a target needs: choices, numbers, texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Taken from the front; an input that is used up gives zeros and empty texts. Of a text each byte
// is one unit, so that dictionary and seeds are ASCII: a byte from 0x80 on means a unit that
// is of interest (see FuzzInput.cpp).
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* bytes, std::size_t size) : at_(bytes), left_(size) {}

    bool IsUsedUp() const { return left_ == 0; }
    const std::uint8_t* Bytes() const { return at_; }
    std::size_t Left() const { return left_; }

    std::uint8_t Byte();
    // 0 to count - 1.
    std::uint32_t Below(std::uint32_t count) { return Byte() % count; }
    bool Flag() { return (Byte() & 1) != 0; }
    template <typename T, std::size_t N>
    const T& Pick(const T (&choices)[N]) {
        return choices[Below(N)];
    }
    // Up to a NUL, which is passed over and isn't part of it, and at most `most` units.
    std::wstring Name(std::size_t most);
    // All that is left; NULs are units like others.
    std::wstring Rest();

private:
    const std::uint8_t* at_;
    std::size_t left_;
};

// Every half of a pair without its other half becomes U+FFFD.
std::wstring WithWholePairs(std::wstring text);
std::wstring WithoutNulls(std::wstring text);

// Text with whole pairs in UTF-8.
std::string Utf8Of(const std::wstring& text);
// With its low byte first, or its high byte.
std::string Utf16Of(const std::wstring& text, bool bigEndian);

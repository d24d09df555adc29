// Well-formed documents at random, the same for a seed on every machine.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

class DocumentMaker {
public:
    explicit DocumentMaker(std::uint32_t seed) : random_(seed) {}
    std::wstring Make();

private:
    // 0 to below - 1. The standard distributions differ between libraries.
    std::uint32_t Below(std::uint32_t below) {
        return static_cast<std::uint32_t>(random_()) % below;
    }
    template <typename T, std::size_t N>
    const T& Pick(const T (&choices)[N]) {
        return choices[Below(N)];
    }
    void Misc();
    void StartTag(const std::wstring& name, bool empty);
    void Attributes();
    void Value(wchar_t quote);
    void Content();
    void CharacterData();
    void Cdata();

    std::mt19937 random_;
    std::wstring text_;
    std::vector<std::wstring> open_;
};

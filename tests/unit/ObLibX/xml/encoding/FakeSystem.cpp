#include "tests/unit/ObLibX/xml/encoding/FakeSystem.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace obtest {

FakeSystem g_system;

namespace {

using Bytes = std::basic_string_view<char>;

std::uint8_t At(Bytes text, std::size_t index) { return static_cast<std::uint8_t>(text[index]); }

// One character of the page with up to four bytes; what is cut or wrong is '?' byte by byte.
std::size_t TakeLong(Bytes text, std::size_t at, std::wstring& out) {
    const std::uint8_t lead = At(text, at);
    if (lead < 0x80) {
        out += static_cast<wchar_t>(lead);
        return 1;
    }
    const std::size_t left = text.size() - at;
    const std::uint8_t second = left > 1 ? At(text, at + 1) : 0;
    if (lead > 0x80 && lead < 0xFF && second >= 0x40) {
        out += static_cast<wchar_t>(0x4000 | (lead << 8 | second) % 0x3FFF);
        return 2;
    }
    if (lead > 0x80 && lead < 0xFF && second >= 0x30 && second <= 0x39 && left >= 4 &&
        At(text, at + 2) > 0x80 && At(text, at + 3) >= 0x30 && At(text, at + 3) <= 0x39) {
        out += static_cast<wchar_t>(
            0x8000 | (lead * 7 + second * 131 + At(text, at + 2) * 17 + At(text, at + 3)));
        return 4;
    }
    out += L'?';
    return 1;
}

std::wstring ReadLong(Bytes text) {
    std::wstring out;
    for (std::size_t at = 0; at < text.size();) {
        at += TakeLong(text, at, out);
    }
    return out;
}

std::wstring ReadEscaped(Bytes text) {
    std::wstring out;
    bool twoBytes = false;
    for (std::size_t at = 0; at < text.size();) {
        const Bytes escape = text.substr(at, 3);
        if (escape == "\x1B$B" || escape == "\x1B(B") {
            twoBytes = escape[1] == '$';
            at += 3;
        } else if (twoBytes) {
            const std::uint8_t second = at + 1 < text.size() ? At(text, at + 1) : 0;
            out += static_cast<wchar_t>(0x3000 | (At(text, at) << 5) | (second & 0x1F));
            at += 2;
        } else {
            out += static_cast<wchar_t>(At(text, at++));
        }
    }
    return out;
}

template <typename Unit>
std::int32_t HandOut(const std::basic_string<Unit>& text, Unit* out, std::int32_t capacity) {
    const auto length = static_cast<std::int32_t>(text.size());
    if (out == nullptr || capacity == 0) {
        return length;
    }
    // As the real one does, it fills what there is and then fails.
    std::copy_n(text.data(), std::min(length, capacity), out);
    return length <= capacity ? length : 0;
}

bool IsSingleByte(std::uint32_t page) {
    const std::vector<std::uint32_t>& pages = g_system.singleBytePages;
    return page == 1252 || page == 65001 ||
           std::find(pages.begin(), pages.end(), page) != pages.end();
}

} // namespace
} // namespace obtest

namespace ObLibX {

using obtest::g_system;

std::int32_t SystemToWide(std::uint32_t codePage, const char* in, std::int32_t length, wchar_t* out,
                          std::int32_t capacity) {
    ++g_system.toWideCalls;
    g_system.longestToWide = std::max(g_system.longestToWide, capacity);
    const obtest::Bytes bytes(in, static_cast<std::size_t>(length));
    switch (codePage == 0 ? g_system.codePage : codePage) {
    case 54936:
        return obtest::HandOut(obtest::ReadLong(bytes), out, capacity);
    case 50221:
        return obtest::HandOut(obtest::ReadEscaped(bytes), out, capacity);
    case 1252: {
        std::wstring wide;
        for (const char byte : bytes) {
            wide += static_cast<wchar_t>(static_cast<std::uint8_t>(byte));
        }
        return obtest::HandOut(wide, out, capacity);
    }
    default:
        return 0;
    }
}

std::int32_t SystemFromWide(std::uint32_t codePage, const wchar_t* in, std::int32_t length,
                            char* out, std::int32_t capacity, std::int32_t* usedDefault) {
    g_system.fromWide.push_back({codePage, capacity, usedDefault != nullptr});
    if (!obtest::IsSingleByte(codePage == 0 ? g_system.codePage : codePage)) {
        return 0;
    }
    std::string bytes;
    std::int32_t used = 0;
    for (std::int32_t i = 0; i < length; ++i) {
        used |= in[i] > 0xFF ? 1 : 0;
        bytes += in[i] > 0xFF ? '?' : static_cast<char>(in[i]);
    }
    if (usedDefault != nullptr) {
        *usedDefault = used;
    }
    return obtest::HandOut(bytes, out, capacity);
}

std::uint32_t SystemCodePage() { return g_system.codePage; }
std::uint32_t SystemLastError() { return g_system.lastError; }
std::wstring SystemErrorText(std::uint32_t error) {
    return error == g_system.lastError ? g_system.errorText : std::wstring();
}

} // namespace ObLibX

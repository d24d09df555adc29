// A system of the test's own in place of the calls for texts of SystemCalls.h: code pages that few
// systems have, errors as they are wanted, and a memory of what was asked. The program that has it
// links none of the real ones and opens no file by a wide path.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace obtest {

// Pages: 1252 (Latin-1 up to 0xFF), 54936 (one, two and four bytes), 50221 (escape sequences switch
// between one and two bytes), and, as far as conversion from wide goes, 65001 and every page of
// `singleBytePages`. All others are unknown.
struct FakeSystem {
    struct FromWideCall {
        std::uint32_t page;
        std::int32_t capacity;
        bool askedForUsedDefault;
    };
    std::uint32_t codePage = 1252; // the system's own
    std::uint32_t lastError = 0;
    std::wstring errorText;
    std::vector<std::uint32_t> singleBytePages;
    std::vector<FromWideCall> fromWide;
    int toWideCalls = 0;
    std::int32_t longestToWide = 0; // the largest capacity that was named
};
extern FakeSystem g_system; // the one of the test that is running; it sets it anew

} // namespace obtest

// How a test sees a fatal end: in a child process, by its code and by what it wrote.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#if defined(_WIN32)
#include <io.h>
inline void SendStandardOutputToErrors() {
    std::fflush(stdout);
    _dup2(_fileno(stderr), _fileno(stdout));
}
// Windows keeps all of an exit code.
inline constexpr int kFatalCodeSeen = 999;
#else
#include <unistd.h>
inline void SendStandardOutputToErrors() {
    std::fflush(stdout);
    dup2(2, 1);
}
// Elsewhere a process ends with the low eight bits.
inline constexpr int kFatalCodeSeen = 999 & 0xFF;
#endif

// The statement writes `text` to the standard output and ends the process with the fatal code.
#define EXPECT_FATAL(statement, text)                                                              \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            SendStandardOutputToErrors();                                                          \
            statement;                                                                             \
        },                                                                                         \
        testing::ExitedWithCode(kFatalCodeSeen), testing::HasSubstr(text))

// A failed check of a source of the base library; `source` is named without ".cpp".
#define EXPECT_FATAL_ASSERT(statement, source)                                                     \
    EXPECT_FATAL(statement, std::string("FATAL ERROR: assert failure in Module: ObLib\\Src\\") +   \
                                (source) + ".cpp Line number: ")

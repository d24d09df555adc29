// The scripted host's script: a text file beside the host, one command a line.
//
//   # a comment                      (empty lines are passed over too)
//   poke8 OFFSET VALUE               writes bytes of the block, little-endian; numbers are decimal
//   poke16 OFFSET VALUE              or 0x..., and may be negative
//   poke32 OFFSET VALUE
//   fill OFFSET COUNT VALUE          COUNT bytes of one value
//   units OFFSET VALUE...            16-bit units, without a NUL
//   text OFFSET "TEXT"               a text and its NUL; there are no escapes
//   list OFFSET "TEXT"...            each text with its NUL, and a closing NUL
//   slot "TEXT"...                   the same at the file slot of the request
//   status VALUE                     the block's status
//   result VALUE                     the block's result
//   dump NAME                        the block's bytes, unchanged, to a file
//   owner                            records what the owner window is and whether its owner's root
//                                    window takes input
//   post-quit VALUE                  posts WM_QUIT to the thread of the owner window
//   make-file NAME                   an empty file, as a sign to the test
//   wait-file NAME [MILLISECONDS]    until the file is there; exit code 91 after the limit (20 s)
//   sleep MILLISECONDS
//   crash                            ends the process by an access violation
//   exit VALUE                       ends the process; the end of the script is "exit 0"
//
// A name is that of a file in the host's folder. Each run appends its command line to the record,
// and so does the command `owner`. A command that can't be carried out ends the run with exit code
// 90 and a line in the record with the reason.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace obtest {

inline constexpr wchar_t kHostScriptFileName[] = L"host-script.txt";
inline constexpr wchar_t kHostCallsFileName[] = L"host-calls.txt";
inline constexpr int kHostScriptFailed = 90;
inline constexpr int kHostWaitedInVain = 91;

struct HostCommand {
    std::wstring line; // for the record
    std::wstring name;
    std::vector<std::wstring> arguments;
};

// Every command of a script, in order.
std::vector<HostCommand> ParseHostScript(const std::wstring& script);

// Decimal or 0x..., perhaps negative.
std::int64_t HostNumber(const std::wstring& text);

} // namespace obtest

// What the fakes of the sister modules share: calls are appended to a file beside the running
// program, and answers are read from another, so that a test sees the calls of a host process too.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace obtest {

inline constexpr wchar_t kCallsFileName[] = L"fakes-calls.txt";
inline constexpr wchar_t kScriptFileName[] = L"fakes-script.txt";

// Exists while a call waits (script: Hold=NAME); the call goes on when a test deletes the file.
inline constexpr wchar_t kHeldFileName[] = L"fake-held.txt";

// Full path of a file in the running program's folder.
std::wstring BesideProgram(const wchar_t* fileName);

// Appends one line, as UTF-8, in one write: calls of several processes keep their order.
void RecordCall(const std::wstring& line);

// The text that the test's script gives for `call`, or nothing. A later line of the same call wins.
std::optional<std::wstring> ScriptedAnswer(const wchar_t* call);

// The same as a decimal number (a leading minus is allowed).
std::uint64_t ScriptedNumber(const wchar_t* call, std::uint64_t otherwise);

// Forms of arguments in a recorded line.
std::wstring Quoted(const wchar_t* text); // null is the word null
std::wstring WindowText(HWND window);     // the handle as a decimal number

// UTF-8 files, whole. A file that can't be read is empty.
std::wstring ReadUtf8File(const std::wstring& path);
void AppendUtf8File(const std::wstring& path, const std::wstring& text);

} // namespace obtest

// How the fake archive service records and answers a call.
#pragma once

#include <cstdint>
#include <string>

namespace fakes {

// Writes the call down and returns its line, `Name(arguments)`.
std::wstring Record(const wchar_t* call, const std::wstring& arguments = {});

// The number that the script has for this very call (key: the whole line), else for every call of
// this name, else `otherwise`.
std::uint64_t AnswerOf(const std::wstring& line, const wchar_t* call, std::uint64_t otherwise);

// The scripted text of `key` in the system code page, cut to `capacity` bytes with its NUL. An
// unscripted text leaves the buffer alone and answers false.
bool GiveNarrowText(const wchar_t* key, const wchar_t* otherwise, char* buffer,
                    std::size_t capacity);

// Arguments as a recorded line has them; texts and windows are in Recording.h.
std::wstring NarrowText(const char* text);
std::wstring Number(std::uint64_t number);
std::wstring Context(std::uint64_t context);

} // namespace fakes

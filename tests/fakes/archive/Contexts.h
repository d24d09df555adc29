// The zip contexts of the fake, and the file that a scripted success leaves.
#pragma once

#include <cstdint>
#include <string>

namespace fakes {

// Contexts are numbered from 1 in each process, so that recorded lines differ.
std::uint64_t NewContext();
void EndContext(std::uint64_t context);
void NameZip(std::uint64_t context, const wchar_t* path);

// Writes a small marker file at the context's zip path, `size` bytes long when that isn't 0. Does
// nothing for a context that has no zip path.
void WriteMarker(std::uint64_t context, std::uint64_t size);

} // namespace fakes

#include "fuzzing/support/MemoryFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fuzzing/support/Require.h"

MemoryFile::MemoryFile() : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    Require(descriptor_ >= 0, "the system makes files in memory");
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor_);
    path_.assign(path.begin(), path.end());
}

MemoryFile::~MemoryFile() { close(descriptor_); }

void MemoryFile::Write(const std::string& bytes) const {
    const bool written =
        ftruncate(descriptor_, 0) == 0 &&
        pwrite(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    Require(written, "a file in memory can be written");
}

std::string MemoryFile::Read() const {
    struct stat status;
    Require(fstat(descriptor_, &status) == 0, "a file in memory has a length");
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    Require(pread(descriptor_, bytes.data(), bytes.size(), 0) == status.st_size,
            "a file in memory can be read");
    return bytes;
}

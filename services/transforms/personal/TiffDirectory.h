// Reads the directories of a TIFF file, which a camera's block is too: both byte orders, both
// sizes.
#pragma once

#include <optional>

#include "services/transforms/personal/Bytes.h"

namespace transforms::personal {

enum class TiffType : std::uint16_t {
    Byte = 1,
    Ascii = 2,
    Short = 3,
    Long = 4,
    Rational = 5,
    SignedByte = 6,
    Undefined = 7,
    SignedShort = 8,
    SignedLong = 9,
    SignedRational = 10,
    Float = 11,
    Double = 12,
    Directory = 13,
    Long8 = 16,
    SignedLong8 = 17,
    Directory8 = 18,
};

// Bytes of one value; 0 for an unknown type.
std::size_t SizeOf(TiffType type);

// A range of a file's bytes.
struct Extent {
    std::uint64_t begin = 0;
    std::uint64_t size = 0;
    std::uint64_t End() const { return begin + size; }
};

struct TiffEntry {
    std::uint16_t tag = 0;
    TiffType type = TiffType::Byte;
    std::uint64_t count = 0;
    Extent value;            // where the values are in the file, in the entry's field or elsewhere
    Extent field;            // the entry's field for a value or an offset
    bool isInField = false;  // the values are in the field
    bool isReadable = false; // the type is known and the values are inside the file
};

struct TiffDirectory {
    Extent extent; // from the number of entries to the link to the next directory, if it is there
    std::vector<TiffEntry> entries;
    std::uint64_t next = 0; // 0 when it is the last
};

class TiffReader {
public:
    // Nothing unless the file begins as a TIFF of either size.
    static std::optional<TiffReader> Open(Bytes file);

    bool IsLittleEndian() const { return isLittleEndian_; }
    bool IsBig() const { return isBig_; }
    std::uint64_t FirstDirectory() const { return first_; }
    std::size_t HeaderSize() const { return isBig_ ? 16 : 8; }
    std::size_t OffsetSize() const { return isBig_ ? 8 : 4; }
    Bytes File() const { return file_; }
    bool IsInside(const Extent& extent) const;

    // Nothing when the entries aren't whole inside the file.
    std::optional<TiffDirectory> ReadDirectory(std::uint64_t offset) const;
    // A whole number of any size without sign; the entry is readable and has more values than `at`.
    std::uint64_t NumberAt(const TiffEntry& entry, std::uint64_t at) const;
    std::uint64_t Number(std::uint64_t offset, std::size_t size) const; // inside the file

private:
    TiffReader(Bytes file, bool isLittleEndian) : file_(file), isLittleEndian_(isLittleEndian) {}
    TiffEntry ReadEntry(std::uint64_t offset) const;

    Bytes file_;
    bool isLittleEndian_;
    bool isBig_ = false;
    std::uint64_t first_ = 0;
};

} // namespace transforms::personal

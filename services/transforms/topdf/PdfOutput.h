// A PDF that is written from its beginning to its end, without going back: objects, streams whose
// length isn't known before, and the table of objects.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// Writes nothing before the first object. Throws PictureFailure. One thread at a time.
class PdfOutput {
public:
    // The target must outlive the object.
    explicit PdfOutput(PictureTarget& target) noexcept : target_(target) {}

    // The number of an object that is written later.
    unsigned Reserve();

    void Object(unsigned number, std::string_view text);

    // A stream: its dictionary without brackets and length, then its bytes. No object is written in
    // between.
    void BeginStream(unsigned number, std::string_view dictionary);
    void Append(std::span<const std::uint8_t> bytes);
    void EndStream();

    // The table of objects and the trailer. Its identifier is made of all bytes before it, so that
    // equal objects give equal files. Every reserved object has been written.
    void Finish(unsigned catalogue);

private:
    void Write(std::string_view text);

    PictureTarget& target_;
    std::uint64_t offset_ = 0, streamBegin_ = 0;
    std::uint64_t digests_[2] = {0xcbf29ce484222325, 0x84222325cbf29ce4};
    unsigned length_ = 0;                // the object with the open stream's length
    std::vector<std::uint64_t> offsets_; // of the objects, from number 1 on
};

// "7 0 R"
std::string ReferenceTo(unsigned number);
// As PDF writes numbers: at most four decimals, without an exponent.
std::string NumberText(double number);

} // namespace transforms

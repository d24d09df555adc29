#include "services/transforms/topdf/PdfOutput.h"

#include <cstdio>

#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {
namespace {

// A comment of bytes that aren't text, so that nobody converts the file's line ends.
constexpr std::string_view kHeader = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
// The table has ten digits for a place.
constexpr std::uint64_t kMostBytes = 9'999'999'999;

template <class... Values>
std::string Formatted(const char* pattern, Values... values) {
    char text[96];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, pattern, values...))};
}

unsigned long long Wide(std::uint64_t value) noexcept { return value; }

} // namespace

unsigned PdfOutput::Reserve() {
    offsets_.push_back(0);
    return static_cast<unsigned>(offsets_.size());
}

void PdfOutput::Append(std::span<const std::uint8_t> bytes) {
    if (bytes.size() > kMostBytes - offset_) throw PictureFailure{PictureOutcome::TooLarge};
    constexpr std::uint64_t kPrime = 0x100000001b3;
    for (const std::uint8_t byte : bytes) {
        digests_[0] = (digests_[0] ^ byte) * kPrime;
        digests_[1] = digests_[1] * kPrime ^ byte;
    }
    WritePicture(target_, offset_, bytes);
    offset_ += bytes.size();
}

void PdfOutput::Write(std::string_view text) {
    Append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void PdfOutput::Object(unsigned number, std::string_view text) {
    if (offset_ == 0) Write(kHeader);
    offsets_[number - 1] = offset_;
    Write(Formatted("%u 0 obj\n", number));
    Write(text);
    Write("\nendobj\n");
}

void PdfOutput::BeginStream(unsigned number, std::string_view dictionary) {
    if (offset_ == 0) Write(kHeader);
    length_ = Reserve();
    offsets_[number - 1] = offset_;
    Write(Formatted("%u 0 obj\n<<", number));
    Write(dictionary);
    Write(" /Length " + ReferenceTo(length_) + ">>\nstream\n");
    streamBegin_ = offset_;
}

void PdfOutput::EndStream() {
    const std::uint64_t length = offset_ - streamBegin_;
    Write("\nendstream\nendobj\n");
    Object(length_, Formatted("%llu", Wide(length)));
}

void PdfOutput::Finish(unsigned catalogue) {
    const std::uint64_t table = offset_;
    Write(
        Formatted("xref\n0 %u\n0000000000 65535 f \n", static_cast<unsigned>(offsets_.size() + 1)));
    for (const std::uint64_t offset : offsets_)
        Write(Formatted("%010llu 00000 n \n", Wide(offset)));
    const std::string id = Formatted("<%016llx%016llx>", Wide(digests_[0]), Wide(digests_[1]));
    Write(Formatted("trailer\n<</Size %u /Root %u 0 R /ID [",
                    static_cast<unsigned>(offsets_.size() + 1), catalogue));
    Write(id + id + Formatted("]>>\nstartxref\n%llu\n%%%%EOF\n", Wide(table)));
}

std::string ReferenceTo(unsigned number) { return Formatted("%u 0 R", number); }

std::string NumberText(double number) {
    std::string text = Formatted("%.4f", number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

} // namespace transforms

#include "services/transforms/documents/PdfStreamSizes.h"

#include <set>

#include <qpdf/Pipeline.hh>

#include "services/transforms/documents/PdfRefusal.h"

namespace transforms::documents {
namespace {

using Object = QPDFObjectHandle;

// Ends the decoding past the limit. The library catches what a pipeline throws while it reads from
// the file, and doesn't while it reads from memory.
class CountingPipeline : public Pipeline {
public:
    explicit CountingPipeline(PictureSteps* steps) : Pipeline("size", nullptr), steps_(steps) {}
    void write(const unsigned char*, std::size_t size) override {
        if (steps_) steps_->Step();
        size_ += size;
        if (IsTooMuch()) throw PdfRefusal(CleanOutcome::TooLarge);
    }
    void finish() override {}
    bool IsTooMuch() const noexcept { return size_ > kMostDecoded; }

private:
    PictureSteps* steps_;
    std::uint64_t size_ = 0;
};

} // namespace

void RequireStreamsFit(const std::vector<QPDFObjectHandle>& streams, PictureSteps* steps) {
    CountingPipeline count(steps);
    for (Object stream : streams) {
        const auto decode = [&stream](Pipeline* to) {
            return stream.pipeStreamData(to, 0, qpdf_dl_specialized, true, false);
        };
        // Without a pipeline the library only reports whether it can decode.
        if (stream.isStream() && decode(nullptr)) decode(&count);
        if (count.IsTooMuch()) throw PdfRefusal(CleanOutcome::TooLarge);
    }
}

void RequireContentsFit(QPDFObjectHandle page, PictureSteps* steps) {
    auto contents = page.getKey("/Contents");
    RequireStreamsFit(contents.isArray() ? contents.getArrayAsVector() : std::vector{contents},
                      steps);
}

void RequirePackedObjectsFit(QPDF& pdf, PictureSteps* steps) {
    constexpr int kPacked = 2;
    const auto table = pdf.getXRefTable();
    std::set<int> streams;
    for (const auto& [number, row] : table) {
        if (row.getType() == kPacked) streams.insert(row.getObjStreamNumber());
    }
    // No stream can be packed; the library would unpack what claims to contain it.
    for (const auto& [number, row] : table) {
        if (row.getType() == kPacked && streams.contains(number.getObj()))
            throw PdfRefusal(CleanOutcome::Damaged);
    }
    for (const int stream : streams) RequireStreamsFit({pdf.getObject(stream, 0)}, steps);
}

} // namespace transforms::documents

#include "services/transforms/topdf/PicturePdf.h"

#include "services/transforms/pictures/Picture.h"
#include "services/transforms/topdf/PicturePages.h"

namespace transforms {
namespace {

// The pages of one file, which have no content but their picture.
class Pages final : public PageSink {
public:
    Pages(PdfOutput& pdf, PdfPageSize size)
        : pdf_(pdf), size_(size), catalogue_(pdf.Reserve()), parent_(pdf.Reserve()) {}

    void AddPage(const WrittenImage& image) override {
        const PageLayout layout = LayOut(image.size, image.orientation, image.resolution, size_);
        const unsigned page = pdf_.Reserve(), content = pdf_.Reserve();
        pdf_.BeginStream(content, "");
        const std::string text = "q " + layout.matrix + " /Picture Do Q\n";
        pdf_.Append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        pdf_.EndStream();
        pdf_.Object(page, "<</Type /Page /Parent " + ReferenceTo(parent_) + " /MediaBox [0 0 " +
                              NumberText(layout.width) + " " + NumberText(layout.height) +
                              "] /Resources <</XObject <</Picture " + ReferenceTo(image.number) +
                              ">>>> /Contents " + ReferenceTo(content) + ">>");
        kids_ += (count_++ ? " " : "") + ReferenceTo(page);
    }

    void Finish() {
        pdf_.Object(parent_,
                    "<</Type /Pages /Kids [" + kids_ + "] /Count " + std::to_string(count_) + ">>");
        pdf_.Object(catalogue_, "<</Type /Catalog /Pages " + ReferenceTo(parent_) + ">>");
        pdf_.Finish(catalogue_);
    }

private:
    PdfOutput& pdf_;
    PdfPageSize size_;
    unsigned catalogue_, parent_;
    std::string kids_;
    unsigned count_ = 0;
};

PictureOutcome Make(PictureSource& source, PictureTarget& target, const PicturePdfRequest& request,
                    const PictureControl& control) {
    PdfOutput pdf(target);
    Pages pages(pdf, request.page);
    if (!WritePictures(pdf, source, request.heifLibrary, pages, control))
        return PictureOutcome::Unchanged;
    pages.Finish();
    return PictureOutcome::Written;
}

} // namespace

PictureOutcome MakePicturePdf(PictureSource& source, PictureTarget& target,
                              const PicturePdfRequest& request,
                              const PictureControl& control) noexcept {
    return RunPictureWork([&] { return Make(source, target, request, control); });
}

} // namespace transforms

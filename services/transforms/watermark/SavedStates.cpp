#include "services/transforms/watermark/SavedStates.h"

#include <string>

#include <qpdf/Pl_String.hh>
#include <qpdf/QPDF.hh>

namespace transforms {
namespace {

class StateFilter final : public QPDFObjectHandle::TokenFilter {
public:
    std::size_t Saved() const { return saved_; }
    bool HasDropped() const { return hasDropped_; }

    void handleToken(const QPDFTokenizer::Token& token) override {
        if (token.isWord("Q") && saved_ == 0) {
            hasDropped_ = true;
            return;
        }
        if (token.isWord("q")) ++saved_;
        if (token.isWord("Q")) --saved_;
        writeToken(token);
    }

private:
    std::size_t saved_ = 0;
    bool hasDropped_ = false;
};

void ReplaceContents(QPDF& pdf, QPDFPageObjectHelper& page) {
    std::string contents;
    Pl_String text("contents", nullptr, contents);
    StateFilter filter;
    page.filterContents(&filter, &text);
    page.getObjectHandle().replaceKey("/Contents", pdf.newStream(contents));
}

} // namespace

std::size_t SavedStatesOf(QPDF& pdf, QPDFPageObjectHelper& page) {
    StateFilter filter;
    page.filterContents(&filter);
    if (filter.HasDropped()) ReplaceContents(pdf, page);
    return filter.Saved();
}

} // namespace transforms

#include "services/transforms/watermark/OpenContents.h"

#include <cstddef>

#include <qpdf/Pl_String.hh>
#include <qpdf/QPDF.hh>

namespace transforms {
namespace {

class ContentsFilter final : public QPDFObjectHandle::TokenFilter {
public:
    bool HasDropped() const { return hasDropped_; }

    std::string Closing() const {
        std::string closing = isText_ ? "\nET" : "";
        for (std::size_t i = 0; i < marked_; ++i) closing += "\nEMC";
        for (std::size_t i = 0; i < saved_; ++i) closing += "\nQ";
        return closing;
    }

    void handleToken(const QPDFTokenizer::Token& token) override {
        if (token.isWord("Q") && saved_ == 0) {
            hasDropped_ = true;
            return;
        }
        Count(token);
        writeToken(token);
    }

private:
    void Count(const QPDFTokenizer::Token& token) {
        if (token.isWord("q")) ++saved_;
        if (token.isWord("Q")) --saved_;
        if (token.isWord("BT")) isText_ = true;
        if (token.isWord("ET")) isText_ = false;
        if (token.isWord("BMC") || token.isWord("BDC")) ++marked_;
        if (token.isWord("EMC") && marked_ > 0) --marked_;
    }

    std::size_t saved_ = 0, marked_ = 0;
    bool isText_ = false;
    bool hasDropped_ = false;
};

void ReplaceContents(QPDF& pdf, QPDFPageObjectHelper& page) {
    std::string contents;
    Pl_String text("contents", nullptr, contents);
    ContentsFilter filter;
    page.filterContents(&filter, &text);
    page.getObjectHandle().replaceKey("/Contents", pdf.newStream(contents));
}

} // namespace

std::string ClosingOf(QPDF& pdf, QPDFPageObjectHelper& page) {
    ContentsFilter filter;
    page.filterContents(&filter);
    if (filter.HasDropped()) ReplaceContents(pdf, page);
    return filter.Closing();
}

} // namespace transforms

#include "services/transforms/documents/PdfCombine.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>

#include "services/transforms/documents/PdfDestinations.h"
#include "services/transforms/documents/PdfDictionaries.h"
#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfWalk.h"

namespace transforms::documents {
namespace {

using namespace personal;
using Object = QPDFObjectHandle;

std::vector<Object> DictionariesOf(Object array) {
    std::vector<Object> list;
    if (!array.isArray()) return list;
    for (auto& item : array.getArrayAsVector()) {
        if (item.isDictionary()) list.push_back(item);
    }
    return list;
}

// The bookmarks of a file in the order of its tree, each once: damaged ones may form a loop.
std::vector<Object> BookmarksOf(Object outlines) {
    std::vector<Object> list;
    std::vector<Object> open{std::move(outlines)};
    std::set<QPDFObjGen> seen;
    while (!open.empty()) {
        auto item = open.back();
        open.pop_back();
        if (!item.isDictionary() || !seen.insert(item.getObjGen()).second) continue;
        list.push_back(item);
        open.push_back(item.getKey("/Next"));
        open.push_back(item.getKey("/First"));
    }
    return list;
}

bool IsSigned(QPDF& pdf) {
    bool isSigned = false;
    VisitPdfObjects(pdf.getRoot(), [&](Object& object) {
        isSigned |= object.isDictionary() && IsPdfSignature(object);
    });
    return isSigned;
}

void AppendAll(Object& to, Object from) {
    if (!from.isArray()) return;
    for (auto& item : from.getArrayAsVector()) to.appendItem(item);
}

class PdfCombiner {
public:
    PdfCombiner() : target_(std::make_unique<QPDF>()) {
        target_->emptyPDF();
        outlines_ = target_->makeIndirectObject(Object::parse("<</Type /Outlines>>"));
    }

    // Cleaned, or why the part is refused.
    CleanOutcome Add(const PdfPart& part) {
        sources_.push_back(std::make_unique<QPDF>());
        QPDF& source = *sources_.back();
        OpenPdf(source, part.file);
        if (source.isEncrypted()) return CleanOutcome::Encrypted;
        if (source.getAllPages().empty()) return CleanOutcome::Damaged;
        if (IsSigned(source)) return CleanOutcome::Signed;
        const std::size_t first = pages_.size();
        NumberPlaces(source, first);
        CopyPages(source);
        CopyLayers(source);
        AddBookmark(source, part.title, pages_[first]);
        return source.anyWarnings() ? CleanOutcome::Damaged : CleanOutcome::Cleaned;
    }

    OwnedBytes Write() {
        for (auto& page : pages_) {
            for (auto& link : DictionariesOf(page.getKey("/Annots"))) PutPages(link, pages_);
        }
        for (auto& bookmark : BookmarksOf(outlines_)) PutPages(bookmark, pages_);
        target_->getRoot().replaceKey("/Outlines", outlines_);
        WriteLayers();
        return WritePdf(*target_, PdfStreams::AsTheyAre);
    }

private:
    static void NumberPlaces(QPDF& source, std::size_t first) {
        PdfDestinations places(source, first);
        for (auto page : source.getAllPages()) {
            for (auto& link : DictionariesOf(page.getKey("/Annots"))) places.Number(link);
        }
        for (auto& bookmark : BookmarksOf(source.getRoot().getKey("/Outlines"))) {
            places.Number(bookmark);
        }
    }

    void CopyPages(QPDF& source) {
        QPDFPageDocumentHelper pages(*target_);
        QPDFAcroFormDocumentHelper form(*target_);
        QPDFAcroFormDocumentHelper formOfSource(source);
        for (auto& page : QPDFPageDocumentHelper(source).getAllPages()) {
            pages.addPage(page, false);
            auto copied = target_->getAllPages().back();
            form.fixCopiedAnnotations(copied, page.getObjectHandle(), formOfSource);
            copied.removeKey("/StructParents");
            pages_.push_back(copied);
        }
    }

    // A part without layers of its own adds none.
    void CopyLayers(QPDF& source) {
        auto layers = source.getRoot().getKey("/OCProperties");
        if (!layers.isDictionary()) return;
        layers = Copied(source, layers);
        auto shown = layers.getKey("/D");
        AppendAll(layers_, layers.getKey("/OCGs"));
        if (!shown.isDictionary()) return;
        AppendAll(order_, shown.getKey("/Order"));
        AppendAll(hidden_, shown.getKey("/OFF"));
        if (!shown.getKey("/BaseState").isNameAndEquals("/OFF")) return;
        HideAllBut(layers.getKey("/OCGs"), shown.getKey("/ON"));
    }

    void HideAllBut(Object all, Object exceptions) {
        std::set<QPDFObjGen> shown;
        for (auto& layer : DictionariesOf(exceptions)) shown.insert(layer.getObjGen());
        for (auto& layer : DictionariesOf(all)) {
            if (!shown.contains(layer.getObjGen())) hidden_.appendItem(layer);
        }
    }

    void WriteLayers() {
        if (layers_.getArrayNItems() == 0) return;
        auto shown = Object::newDictionary();
        shown.replaceKey("/Order", order_);
        shown.replaceKey("/OFF", hidden_);
        auto layers = Object::newDictionary();
        layers.replaceKey("/OCGs", layers_);
        layers.replaceKey("/D", shown);
        target_->getRoot().replaceKey("/OCProperties", layers);
    }

    void AddBookmark(QPDF& source, const std::string& title, Object page) {
        auto bookmark = target_->makeIndirectObject(Object::newDictionary());
        bookmark.replaceKey("/Title", Object::newUnicodeString(title));
        bookmark.replaceKey("/Dest", Object::newArray({page, Object::newName("/Fit")}));
        AddBelow(outlines_, bookmark);
        CopyBookmarks(source, bookmark);
    }

    // One after the other: a chain of bookmarks that is copied as a whole is as deep as it is long.
    void CopyBookmarks(QPDF& source, const Object& below) {
        struct Next {
            Object item;
            Object parent;
        };
        std::set<QPDFObjGen> seen;
        auto outlines = source.getRoot().getKey("/Outlines");
        if (!outlines.isDictionary()) return;
        std::vector<Next> open{{outlines.getKey("/First"), below}};
        while (!open.empty()) {
            auto [item, parent] = std::move(open.back());
            open.pop_back();
            if (!item.isDictionary() || !seen.insert(item.getObjGen()).second) continue;
            auto copy = target_->makeIndirectObject(Object::newDictionary());
            for (const char* key : {"/Title", "/Dest", "/A", "/C", "/F"}) {
                if (item.hasKey(key)) copy.replaceKey(key, Copied(source, item.getKey(key)));
            }
            AddBelow(parent, copy);
            open.push_back({item.getKey("/Next"), parent});
            open.push_back({item.getKey("/First"), copy});
        }
    }

    Object Copied(QPDF& source, Object value) {
        return target_->copyForeignObject(value.isIndirect() ? value
                                                             : source.makeIndirectObject(value));
    }

    // A negative count means that a bookmark is shown closed.
    void AddBelow(Object parent, Object item) {
        auto last = parent.getKey("/Last");
        item.replaceKey("/Parent", parent);
        if (last.isNull()) {
            parent.replaceKey("/First", item);
        } else {
            last.replaceKey("/Next", item);
            item.replaceKey("/Prev", last);
        }
        parent.replaceKey("/Last", item);
        auto count = parent.getKey("/Count");
        const long long before = count.isInteger() ? count.getIntValue() : 0;
        parent.replaceKey("/Count",
                          Object::newInteger(before + (parent.isSameObjectAs(outlines_) ? 1 : -1)));
    }

    std::vector<std::unique_ptr<QPDF>>
        sources_; // the target reads their streams when it is written
    std::unique_ptr<QPDF> target_;
    std::vector<Object> pages_;
    Object outlines_;
    Object layers_ = Object::newArray();
    Object order_ = Object::newArray();
    Object hidden_ = Object::newArray();
};

CombinedPdf Combine(std::span<const PdfPart> parts, std::size_t& at) {
    PdfCombiner combiner;
    for (at = 0; at < parts.size(); ++at) {
        const CleanOutcome outcome = combiner.Add(parts[at]);
        if (outcome != CleanOutcome::Cleaned) return {outcome, {}, at};
    }
    return {CleanOutcome::Cleaned, combiner.Write(), 0};
}

} // namespace

CombinedPdf CombinePdfs(std::span<const PdfPart> parts) {
    std::size_t at = 0;
    try {
        return Combine(parts, at);
    } catch (const std::exception&) {
        return {OutcomeOfPdfError(), {}, std::min(at, parts.size() - 1)};
    }
}

} // namespace transforms::documents

#include "services/transforms/documents/PdfPages.h"

#include <algorithm>
#include <set>
#include <utility>

namespace transforms::documents {
namespace {

using Object = QPDFObjectHandle;

struct Node {
    Object object;
    InheritedByPage inherited;
    std::size_t depth;
};

void Inherit(InheritedByPage& inherited, Object& node) {
    for (std::size_t at = 0; at < kInheritedByPages.size(); ++at) {
        auto value = node.getKey(kInheritedByPages[at]);
        if (!value.isNull()) inherited[at] = value;
    }
}

class PageList {
public:
    std::vector<PdfPage> Take(Object root) {
        open_.push_back({std::move(root), {}, 0});
        while (!open_.empty()) {
            Node node = std::move(open_.back());
            open_.pop_back();
            Visit(node);
        }
        if (pages_.empty()) throw PdfRefusal(CleanOutcome::Damaged);
        return std::move(pages_);
    }

private:
    void Visit(Node& node) {
        if (!node.object.isDictionary()) throw PdfRefusal(CleanOutcome::Damaged);
        auto kids = node.object.getKey("/Kids");
        if (kids.isArray()) return Open(node, kids);
        if (!node.object.getKey("/Type").isNameAndEquals("/Pages")) {
            pages_.push_back({node.object, node.inherited});
        }
    }

    void Open(Node& node, Object& kids) {
        const bool isNew =
            !node.object.isIndirect() || seen_.insert(node.object.getObjGen()).second;
        if (!isNew || node.depth >= kDeepestTree) throw PdfRefusal(CleanOutcome::Damaged);
        Inherit(node.inherited, node.object);
        auto inOrder = kids.getArrayAsVector();
        std::ranges::reverse(inOrder);
        for (auto& kid : inOrder) {
            open_.push_back({kid, node.inherited, node.depth + 1});
        }
    }

    std::vector<Node> open_;
    std::vector<PdfPage> pages_;
    std::set<QPDFObjGen> seen_;
};

} // namespace

std::vector<PdfPage> PagesOf(QPDF& pdf) { return PageList().Take(pdf.getRoot().getKey("/Pages")); }

std::vector<QPDFObjectHandle> DictionariesOf(const QPDFObjectHandle& array) {
    std::vector<Object> list;
    Object items = array;
    if (!items.isArray()) return list;
    for (auto& item : items.getArrayAsVector()) {
        if (item.isDictionary()) list.push_back(item);
    }
    return list;
}

} // namespace transforms::documents

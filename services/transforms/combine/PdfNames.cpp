#include "services/transforms/combine/PdfNames.h"

#include <algorithm>
#include <cstddef>
#include <set>

#include "services/transforms/documents/PdfPages.h"

namespace transforms::combine {
namespace {

using namespace documents;
using Object = QPDFObjectHandle;

struct Node {
    Object object;
    std::size_t depth;
};

class NameList {
public:
    std::vector<PdfName> Take(Object root) {
        open_.push_back({std::move(root), 0});
        while (!open_.empty()) {
            Node node = std::move(open_.back());
            open_.pop_back();
            Visit(node);
        }
        return std::move(names_);
    }

private:
    void Visit(Node& node) {
        const bool isNew =
            !node.object.isIndirect() || seen_.insert(node.object.getObjGen()).second;
        if (!node.object.isDictionary() || !isNew || node.depth > kDeepestTree) {
            throw PdfRefusal(CleanOutcome::Damaged);
        }
        TakePairs(node.object.getKey("/Names"));
        auto kids = node.object.getKey("/Kids");
        if (!kids.isArray()) return;
        auto inOrder = kids.getArrayAsVector();
        std::ranges::reverse(inOrder);
        for (auto& kid : inOrder) open_.push_back({kid, node.depth + 1});
    }

    void TakePairs(Object pairs) {
        if (!pairs.isArray()) return;
        auto items = pairs.getArrayAsVector();
        if (items.size() % 2 != 0) throw PdfRefusal(CleanOutcome::Damaged);
        for (std::size_t at = 0; at < items.size(); at += 2) {
            if (!items[at].isString()) throw PdfRefusal(CleanOutcome::Damaged);
            names_.push_back({items[at].getUTF8Value(), items[at + 1]});
        }
    }

    std::vector<Node> open_;
    std::vector<PdfName> names_;
    std::set<QPDFObjGen> seen_;
};

} // namespace

std::vector<PdfName> NamesOf(const Object& tree) {
    Object root = tree;
    if (!root.isDictionary()) return {};
    return NameList().Take(root);
}

} // namespace transforms::combine

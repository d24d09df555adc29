#include "services/transforms/documents/PdfWalk.h"

#include <set>
#include <utility>
#include <vector>

namespace transforms::documents {
namespace {

using Object = QPDFObjectHandle;

void Push(Object object, std::vector<Object>& open) {
    const bool isContainer = object.isArray() || object.isDictionary() || object.isStream();
    if (isContainer) open.push_back(std::move(object));
}

void PushChildren(Object& object, std::vector<Object>& open) {
    if (object.isArray()) {
        for (auto& item : object.getArrayAsVector()) Push(item, open);
    } else {
        auto dictionary = object.isStream() ? object.getDict() : object;
        for (auto& item : dictionary.getDictAsMap()) Push(item.second, open);
    }
}

} // namespace

void VisitPdfObjects(QPDFObjectHandle root, const std::function<void(QPDFObjectHandle&)>& visit,
                     PictureSteps* steps) {
    std::set<QPDFObjGen> seen;
    std::vector<Object> open;
    Push(std::move(root), open);
    while (!open.empty()) {
        if (steps) steps->Step();
        auto object = std::move(open.back());
        open.pop_back();
        if (object.isIndirect() && !seen.insert(object.getObjGen()).second) continue;
        visit(object);
        PushChildren(object, open);
    }
}

} // namespace transforms::documents

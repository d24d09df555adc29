#include "services/transforms/combine/PdfLayers.h"

#include <set>

#include "services/transforms/documents/PdfPages.h"

namespace transforms::combine {
namespace {

using namespace documents;
using Object = QPDFObjectHandle;

void AppendAll(Object& to, Object from) {
    if (!from.isArray()) return;
    for (auto& item : from.getArrayAsVector()) to.appendItem(item);
}

void SetUnlessEmpty(Object& dictionary, const char* key, Object& array) {
    if (array.getArrayNItems() > 0) dictionary.replaceKey(key, array);
}

} // namespace

void PdfLayers::Add(Object layers) {
    if (!layers.isDictionary()) return;
    auto shown = layers.getKey("/D");
    AppendAll(all_, layers.getKey("/OCGs"));
    if (!shown.isDictionary()) return;
    AppendAll(order_, shown.getKey("/Order"));
    AppendAll(hidden_, shown.getKey("/OFF"));
    AppendAll(groups_, shown.getKey("/RBGroups"));
    AppendAll(automatic_, shown.getKey("/AS"));
    if (!shown.getKey("/BaseState").isNameAndEquals("/OFF")) return;
    HideAllBut(layers.getKey("/OCGs"), shown.getKey("/ON"));
}

void PdfLayers::HideAllBut(Object all, Object exceptions) {
    std::set<QPDFObjGen> shown;
    for (auto& layer : DictionariesOf(exceptions)) shown.insert(layer.getObjGen());
    for (auto& layer : DictionariesOf(all)) {
        if (!shown.contains(layer.getObjGen())) hidden_.appendItem(layer);
    }
}

void PdfLayers::Write(Object catalog) {
    if (all_.getArrayNItems() == 0) return;
    auto shown = Object::newDictionary();
    shown.replaceKey("/Order", order_);
    shown.replaceKey("/OFF", hidden_);
    SetUnlessEmpty(shown, "/RBGroups", groups_);
    SetUnlessEmpty(shown, "/AS", automatic_);
    auto layers = Object::newDictionary();
    layers.replaceKey("/OCGs", all_);
    layers.replaceKey("/D", shown);
    catalog.replaceKey("/OCProperties", layers);
}

} // namespace transforms::combine

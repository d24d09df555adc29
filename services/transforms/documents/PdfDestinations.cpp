#include "services/transforms/documents/PdfDestinations.h"

#include <qpdf/QPDFNameTreeObjectHelper.hh>

namespace transforms::documents {
namespace {

using Object = QPDFObjectHandle;

// The dictionary with the destination of a link or bookmark, and its key; a null object when it
// leads elsewhere or nowhere.
std::pair<Object, const char*> HolderOf(Object holder) {
    if (holder.hasKey("/Dest")) return {holder, "/Dest"};
    auto action = holder.getKey("/A");
    const bool leadsInside = action.isDictionary() && action.getKey("/S").isNameAndEquals("/GoTo");
    return leadsInside ? std::pair{action, "/D"} : std::pair{Object::newNull(), ""};
}

// A place in a table of names is an array, or a dictionary with one.
Object PlaceOf(Object entry) { return entry.isDictionary() ? entry.getKey("/D") : entry; }

} // namespace

PdfDestinations::PdfDestinations(QPDF& pdf, std::size_t first) {
    for (const auto& page : pdf.getAllPages()) numbers_.emplace(page.getObjGen(), first++);
    ReadNames(pdf);
}

void PdfDestinations::ReadNames(QPDF& pdf) {
    auto old = pdf.getRoot().getKey("/Dests");
    if (old.isDictionary()) {
        for (auto& [name, place] : old.getDictAsMap()) names_.emplace(name, PlaceOf(place));
    }
    auto names = pdf.getRoot().getKey("/Names");
    if (!names.isDictionary() || !names.getKey("/Dests").isDictionary()) return;
    QPDFNameTreeObjectHelper tree(names.getKey("/Dests"), pdf, false);
    for (const auto& [name, place] : tree) names_.emplace(name, PlaceOf(place));
}

// Nothing, as a null object, for a place that doesn't exist.
Object PdfDestinations::Numbered(Object destination) const {
    if (destination.isName() || destination.isString()) {
        const auto found =
            names_.find(destination.isName() ? destination.getName() : destination.getUTF8Value());
        destination = found == names_.end() ? Object::newNull() : found->second;
    }
    if (!destination.isArray() || destination.getArrayNItems() == 0) return Object::newNull();
    auto items = destination.getArrayAsVector();
    const auto number = numbers_.find(items[0].getObjGen());
    if (number == numbers_.end()) return Object::newNull();
    items[0] = Object::newInteger(static_cast<long long>(number->second));
    return Object::newArray(items);
}

void PdfDestinations::Number(QPDFObjectHandle holder) {
    auto [dictionary, key] = HolderOf(holder);
    if (dictionary.isNull()) return;
    auto place = dictionary.getKey(key);
    const bool isNumbered = place.isArray() && place.getArrayNItems() > 0 &&
                            place.getArrayItem(0).isInteger(); // an action that two links share
    if (!isNumbered) dictionary.replaceKey(key, Numbered(place));
}

void PutPages(QPDFObjectHandle holder, const std::vector<QPDFObjectHandle>& pages) {
    auto [dictionary, key] = HolderOf(holder);
    if (dictionary.isNull()) return;
    auto place = dictionary.getKey(key);
    if (!place.isArray() || place.getArrayNItems() == 0) return;
    auto page = place.getArrayItem(0);
    if (!page.isInteger()) return;
    const auto number = static_cast<std::size_t>(page.getIntValue());
    if (number < pages.size()) place.setArrayItem(0, pages[number]);
}

} // namespace transforms::documents

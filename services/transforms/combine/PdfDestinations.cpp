#include "services/transforms/combine/PdfDestinations.h"

#include "services/transforms/combine/PdfNames.h"

namespace transforms::combine {
namespace {

using namespace documents;
using Object = QPDFObjectHandle;

// A place in a table of names is an array, or a dictionary with one.
Object PlaceOf(Object entry) { return entry.isDictionary() ? entry.getKey("/D") : entry; }

} // namespace

PdfDestinations::PdfDestinations(QPDF& pdf, const std::vector<PdfPage>& pages) : pdf_(pdf) {
    for (const PdfPage& page : pages) {
        pages_.push_back(page.page);
        if (page.page.isIndirect()) isPage_.insert(page.page.getObjGen());
    }
}

// Old files have a dictionary of names, newer ones a tree of strings.
const PdfDestinations::Names& PdfDestinations::ReadNames() {
    if (names_) return *names_;
    names_.emplace();
    auto old = pdf_.getRoot().getKey("/Dests");
    if (old.isDictionary()) {
        for (auto& [name, place] : old.getDictAsMap()) names_->emplace(name, PlaceOf(place));
    }
    auto names = pdf_.getRoot().getKey("/Names");
    if (!names.isDictionary()) return *names_;
    for (const auto& [name, place] : NamesOf(names.getKey("/Dests"))) {
        names_->emplace(name, PlaceOf(place));
    }
    return *names_;
}

Object PdfDestinations::Place(Object destination) {
    if (destination.isName() || destination.isString()) {
        const Names& names = ReadNames();
        const auto found =
            names.find(destination.isName() ? destination.getName() : destination.getUTF8Value());
        destination = found == names.end() ? Object::newNull() : found->second;
    }
    if (!destination.isArray() || destination.getArrayNItems() == 0) return Object::newNull();
    auto items = destination.getArrayAsVector();
    if (items[0].isInteger()) {
        const auto number = static_cast<unsigned long long>(items[0].getIntValue());
        if (number >= pages_.size()) return Object::newNull();
        items[0] = pages_[number];
    } else if (!items[0].isIndirect() || !isPage_.contains(items[0].getObjGen())) {
        return Object::newNull();
    }
    return Object::newArray(items);
}

bool PdfDestinations::IsPlace(Object& holder, const std::string& key) {
    if (key == "/Dest") return holder.getKey("/Subtype").isNameAndEquals("/Link");
    return key == "/D" && holder.getKey("/S").isNameAndEquals("/GoTo");
}

} // namespace transforms::combine

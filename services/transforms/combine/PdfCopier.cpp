#include "services/transforms/combine/PdfCopier.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "services/transforms/combine/PdfFormActions.h"
#include "services/transforms/documents/PdfDictionaries.h"

namespace transforms::combine {
namespace {

using Object = QPDFObjectHandle;

// What belongs to a file as a whole: a part's pages are reached by their map alone.
constexpr std::string_view kOfFile[] = {"/Page", "/Pages", "/Catalog", "/StructTreeRoot",
                                        "/StructElem"};
// Numbers of a tree that isn't taken over.
constexpr std::string_view kNotCopied[] = {"/StructParent", "/StructParents"};

bool IsNotCopied(const std::string& key) {
    return std::ranges::find(kNotCopied, key) != std::end(kNotCopied);
}

} // namespace

void PdfCopier::Map(const Object& from, const Object& to) { copies_.emplace(from.getObjGen(), to); }

Object PdfCopier::Copy(const Object& value) {
    return value.isIndirect() ? CopyIndirect(value) : CopyDirect(value);
}

// As deep as the library has read it, which is bounded.
Object PdfCopier::CopyDirect(Object value) {
    if (value.isArray()) {
        std::vector<Object> items = value.getArrayAsVector();
        for (auto& item : items) item = Copy(item);
        return Object::newArray(items);
    }
    if (!value.isDictionary()) return value.isNull() ? Object::newNull() : value.shallowCopy();
    if (IsLeftOut(value)) return Object::newNull();
    auto copy = Object::newDictionary();
    CopyKeys(value, copy);
    return copy;
}

Object PdfCopier::CopyIndirect(const Object& value) {
    const auto known = copies_.find(value.getObjGen());
    if (known != copies_.end()) return known->second;
    if (steps_) steps_->Step();
    auto copy = Begin(value);
    copies_.emplace(value.getObjGen(), copy);
    return copy;
}

// An object that Fill completes later, so that a chain of them takes no stack.
Object PdfCopier::Begin(Object value) {
    if (value.isNull()) return Object::newNull();
    Object copy;
    if (value.isStream()) {
        copy = BeginStream(value);
    } else if (value.isDictionary()) {
        if (IsLeftOut(value)) return Object::newNull();
        copy = target_.makeIndirectObject(Object::newDictionary());
    } else if (value.isArray()) {
        copy = target_.makeIndirectObject(Object::newArray());
    } else {
        return target_.makeIndirectObject(value.shallowCopy());
    }
    open_.emplace_back(value, copy);
    return copy;
}

// The data stay as they are coded.
Object PdfCopier::BeginStream(const Object& value) {
    auto copy = target_.newStream();
    copy.replaceStreamData(
        [source = value, before = beforeStream_](Pipeline* pipeline, bool suppress,
                                                 bool retry) mutable {
            before();
            if (!source.pipeStreamData(pipeline, nullptr, 0, qpdf_dl_none, suppress, retry)) {
                throw std::runtime_error("a stream can't be read");
            }
            return true;
        },
        Object(), Object()); // the codings are copied with the other keys
    return copy;
}

bool PdfCopier::IsLeftOut(Object dictionary) {
    if (documents::IsPdfSignature(dictionary)) {
        hasMetSignature_ = true;
        return signatures_ == PdfSignatures::AreLeftOut;
    }
    if (leavesOutScripts_ && FindsFieldsByName(dictionary)) return true;
    auto type = dictionary.getKey("/Type");
    return type.isName() && std::ranges::find(kOfFile, type.getName()) != std::end(kOfFile);
}

void PdfCopier::CopyKeys(Object from, Object to) {
    if (MayReachAllFields(from)) formActions_.push_back(to);
    for (auto& [key, value] : from.getDictAsMap()) {
        if (IsNotCopied(key)) continue;
        to.replaceKey(key,
                      Copy(PdfDestinations::IsPlace(from, key) ? places_.Place(value) : value));
    }
}

void PdfCopier::Fill(Object from, Object to) {
    if (from.isArray()) {
        for (auto& item : from.getArrayAsVector()) to.appendItem(Copy(item));
    } else if (from.isStream()) {
        auto dictionary = from.getDict();
        for (auto& [key, value] : dictionary.getDictAsMap()) {
            if (key != "/Length" && !IsNotCopied(key)) to.getDict().replaceKey(key, Copy(value));
        }
    } else {
        CopyKeys(from, to);
    }
}

void PdfCopier::Finish() {
    while (!open_.empty()) {
        auto [from, to] = std::move(open_.back());
        open_.pop_back();
        Fill(std::move(from), std::move(to));
    }
}

} // namespace transforms::combine

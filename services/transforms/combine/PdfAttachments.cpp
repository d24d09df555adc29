#include "services/transforms/combine/PdfAttachments.h"

#include <qpdf/QPDFNameTreeObjectHelper.hh>

namespace transforms::combine {
namespace {

using Object = QPDFObjectHandle;

} // namespace

PdfAttachments::Files PdfAttachments::Copy(PdfCopier& copier, QPDF& source) {
    Files files;
    auto names = source.getRoot().getKey("/Names");
    if (!names.isDictionary() || !names.getKey("/EmbeddedFiles").isDictionary()) return files;
    QPDFNameTreeObjectHelper tree(names.getKey("/EmbeddedFiles"), source, false);
    for (const auto& [name, file] : tree) files.emplace(name, copier.Copy(file));
    return files;
}

void PdfAttachments::Add(const Files& files) {
    for (const auto& [name, file] : files) {
        std::string unique = name;
        for (int number = 2; files_.contains(unique); ++number) {
            unique = name + " (" + std::to_string(number) + ")";
        }
        files_.emplace(unique, file);
    }
}

// The keys are written as they are compared: in the order of their bytes.
void PdfAttachments::Write(Object catalog) {
    if (files_.empty()) return;
    std::map<std::string, Object> sorted;
    for (const auto& [name, file] : files_) {
        sorted.emplace(Object::newUnicodeString(name).getStringValue(), file);
    }
    auto rows = Object::newArray();
    for (const auto& [name, file] : sorted) {
        rows.appendItem(Object::newString(name));
        rows.appendItem(file);
    }
    auto tree = Object::newDictionary();
    tree.replaceKey("/Names", rows);
    auto names = Object::newDictionary();
    names.replaceKey("/EmbeddedFiles", tree);
    catalog.replaceKey("/Names", names);
}

} // namespace transforms::combine

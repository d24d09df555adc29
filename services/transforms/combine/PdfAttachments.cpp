#include "services/transforms/combine/PdfAttachments.h"

namespace transforms::combine {
namespace {

using Object = QPDFObjectHandle;

} // namespace

PdfAttachments::Files PdfAttachments::Copy(PdfCopier& copier, QPDF& source) {
    Files files;
    auto names = source.getRoot().getKey("/Names");
    if (!names.isDictionary()) return files;
    files = NamesOf(names.getKey("/EmbeddedFiles"));
    for (auto& row : files) row.value = copier.Copy(row.value);
    return files;
}

void PdfAttachments::Add(const Files& files) {
    for (const auto& [name, file] : files) {
        std::string unique = name;
        if (files_.contains(name)) {
            int& number = numbers_.try_emplace(name, 1).first->second;
            do {
                unique = name + " (" + std::to_string(++number) + ")";
            } while (files_.contains(unique));
        }
        files_.emplace(unique, file);
    }
}

// The keys are written as they are compared: in the order of their bytes.
void PdfAttachments::Write(Object catalog) {
    if (files_.empty()) return;
    std::multimap<std::string, Object> sorted; // no file is lost, whatever its name becomes
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

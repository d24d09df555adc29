// What a reader finds in a PDF.
#pragma once

#include <string>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>

#include "tests/unit/services/transforms/documents/PdfBuilder.h"

namespace samples {

// Every object as text, and every stream's data, decoded where that can be done.
inline std::string Unpacked(const std::string& file, const char* password = nullptr) {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.processMemoryFile("a test's file", file.data(), file.size(), password);
    std::string all = pdf.getTrailer().unparse();
    for (auto& object : pdf.getAllObjects()) {
        all += object.unparseResolved() + "\n";
        if (!object.isStream()) continue;
        const auto data = object.pipeStreamData(nullptr, 0, qpdf_dl_specialized, true)
                              ? object.getStreamData(qpdf_dl_specialized)
                              : object.getRawStreamData();
        all += object.getDict().unparse();
        all.append(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
    }
    return all;
}

} // namespace samples

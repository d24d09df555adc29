// The layers of several PDFs in one.
#pragma once

#include <qpdf/QPDF.hh>

namespace transforms::combine {

// Layers are shown or hidden as before.
class PdfLayers {
public:
    // `layers` is the part of a catalog about them, copied to the target; anything else adds none.
    void Add(QPDFObjectHandle layers);
    void Write(QPDFObjectHandle catalog);

private:
    void HideAllBut(QPDFObjectHandle all, QPDFObjectHandle exceptions);

    QPDFObjectHandle all_ = QPDFObjectHandle::newArray();
    QPDFObjectHandle order_ = QPDFObjectHandle::newArray();
    QPDFObjectHandle hidden_ = QPDFObjectHandle::newArray();
    QPDFObjectHandle groups_ = QPDFObjectHandle::newArray(); // of which one layer is shown at most
    QPDFObjectHandle automatic_ = QPDFObjectHandle::newArray();
};

} // namespace transforms::combine

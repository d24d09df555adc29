// PDFs that are encrypted in each way that the format has.
#pragma once

#include <string>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include "services/transforms/documents/PdfSeed.h"

namespace samples {

enum class Cipher { Rc4Of40, Rc4Of128, Rc4InFilters, Aes128, Aes256Old, Aes256 };
inline constexpr Cipher kCiphers[] = {Cipher::Rc4Of40, Cipher::Rc4Of128,  Cipher::Rc4InFilters,
                                      Cipher::Aes128,  Cipher::Aes256Old, Cipher::Aes256};

struct Protection {
    Cipher cipher = Cipher::Aes256;
    std::string user = "secret";
    std::string owner = "owner";
    bool canChange = true;
};

inline void Protect(QPDFWriter& writer, const Protection& with) {
    const char *user = with.user.c_str(), *owner = with.owner.c_str();
    const bool change = with.canChange;
    const auto print = qpdf_r3p_full;
    switch (with.cipher) {
    case Cipher::Rc4Of40:
        return writer.setR2EncryptionParametersInsecure(user, owner, true, change, true, true);
    case Cipher::Rc4Of128:
        return writer.setR3EncryptionParametersInsecure(user, owner, true, true, true, true, true,
                                                        change, print);
    case Cipher::Rc4InFilters:
    case Cipher::Aes128:
        return writer.setR4EncryptionParametersInsecure(user, owner, true, true, true, true, true,
                                                        change, print, true,
                                                        with.cipher == Cipher::Aes128);
    case Cipher::Aes256Old:
        return writer.setR5EncryptionParameters(user, owner, true, true, true, true, true, change,
                                                print, true);
    case Cipher::Aes256:
        return writer.setR6EncryptionParameters(user, owner, true, true, true, true, true, change,
                                                print, true);
    }
}

// The same bytes at each call.
inline std::string Encrypted(const std::string& plain, const Protection& with = {}) {
    const transforms::documents::SeededBytes random("a test's seed");
    QPDF pdf;
    pdf.processMemoryFile("plain", plain.data(), plain.size());
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setStaticID(true);
    Protect(writer, with);
    writer.write();
    const auto written = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(written->getBuffer()), written->getSize()};
}

} // namespace samples

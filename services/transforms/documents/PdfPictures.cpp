#include "services/transforms/documents/PdfPictures.h"

#include <string>
#include <vector>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDFExc.hh>

#include "services/transforms/documents/PdfStreamSizes.h"
#include "services/transforms/personal/Jpeg.h"

namespace transforms::documents {
namespace {

using namespace personal;
using Object = QPDFObjectHandle;

// The items of a value that is one of them or an array of them.
std::vector<Object> ItemsOf(Object value) {
    if (value.isArray()) return value.getArrayAsVector();
    if (value.isNull()) return {};
    return {value};
}

bool IsCoding(Object name, const char* full, const char* abbreviated) {
    return name.isName() && (name.getName() == full || name.getName() == abbreviated);
}

// What is left of the data once every coding but the last is undone; null when the library doesn't
// know one of them.
auto DataOfLast(QPDF& pdf, Object stream, std::vector<Object> codings, std::vector<Object> with)
    -> decltype(stream.getRawStreamData()) {
    if (codings.size() == 1) return stream.getRawStreamData();
    codings.pop_back();
    with.resize(codings.size(), Object::newNull());
    auto outer = Object::newStream(&pdf, stream.getRawStreamData());
    outer.getDict().replaceKey("/Filter", Object::newArray(codings));
    outer.getDict().replaceKey("/DecodeParms", Object::newArray(with));
    RequireStreamsFit({outer});
    try {
        return outer.getStreamData(qpdf_dl_specialized);
    } catch (const QPDFExc& error) {
        if (error.getErrorCode() != qpdf_e_unsupported) throw;
        return {};
    }
}

std::string TextOf(const OwnedBytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

void CleanPdfPicture(QPDF& pdf, QPDFObjectHandle& stream, FindingCounter& found) {
    auto dictionary = stream.getDict();
    const auto codings = ItemsOf(dictionary.getKey("/Filter"));
    if (codings.empty()) return;
    if (IsCoding(codings.back(), "/JPXDecode", "")) return found.Note(FindingKind::EmbeddedFiles);
    if (!IsCoding(codings.back(), "/DCTDecode", "/DCT")) return;
    const auto with = ItemsOf(dictionary.getKey("/DecodeParms"));
    const auto data = DataOfLast(pdf, stream, codings, with);
    if (!data) return found.Note(FindingKind::EmbeddedFiles);
    const Bytes picture(reinterpret_cast<const std::byte*>(data->getBuffer()), data->getSize());
    const Analysis analysis =
        IsJpeg(picture) ? AnalyzeJpeg(picture) : Failed(CleanOutcome::NotSupported);
    if (analysis.outcome != CleanOutcome::NothingFound) {
        return found.Note(FindingKind::EmbeddedFiles);
    }
    if (analysis.found.IsEmpty()) return;
    found.Note(analysis.found);
    const auto own = with.size() == codings.size() ? with.back() : Object::newNull();
    stream.replaceStreamData(TextOf(analysis.parts.Join()), codings.back(), own);
}

} // namespace transforms::documents

#include "services/transforms/documents/PdfDictionaries.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "services/transforms/documents/LocalPath.h"

namespace transforms::documents {
namespace {

using namespace personal;
using Object = QPDFObjectHandle;

// Parts of the trailer that describe the file to its readers; the writer makes them anew.
constexpr std::string_view kOfTrailer[] = {"/Root",   "/Size",        "/Prev",   "/XRefStm",
                                           "/Type",   "/W",           "/Length", "/Index",
                                           "/Filter", "/DecodeParms", "/ID",     "/Encrypt"};

struct InformationRow {
    std::string_view key;
    FindingKind kind;
};

constexpr InformationRow kInformation[] = {
    {"/Author", FindingKind::Person},       {"/CreationDate", FindingKind::Time},
    {"/ModDate", FindingKind::Time},        {"/Creator", FindingKind::Software},
    {"/Producer", FindingKind::Software},   {"/Title", FindingKind::Description},
    {"/Subject", FindingKind::Description}, {"/Keywords", FindingKind::Description},
};

// Comments that people write: their author is the title.
constexpr std::string_view kMarkup[] = {
    "/Text",     "/FreeText",  "/Line",           "/Square",   "/Circle",    "/Polygon",
    "/PolyLine", "/Highlight", "/Underline",      "/Squiggly", "/StrikeOut", "/Caret",
    "/Stamp",    "/Ink",       "/FileAttachment", "/Sound",    "/Redact",    "/Projection"};
constexpr std::string_view kOtherAnnotations[] = {
    "/Link",        "/Popup",   "/Movie",     "/Screen", "/Widget",
    "/PrinterMark", "/TrapNet", "/Watermark", "/3D",     "/RichMedia"};

template <std::size_t count>
bool IsIn(const std::string_view (&list)[count], std::string_view name) {
    return std::ranges::find(list, name) != std::end(list);
}

std::string NameAt(Object dictionary, const char* key) {
    auto value = dictionary.getKey(key);
    return value.isName() ? value.getName() : std::string();
}

// Removes a key from a dictionary, if it is there.
void Remove(Object& dictionary, const std::string& key, FindingKind kind, FindingCounter& found) {
    if (!dictionary.hasKey(key)) return;
    dictionary.removeKey(key);
    found.Note(kind);
}

bool IsDrawn(Object stream) {
    const auto subtype = NameAt(stream.getDict(), "/Subtype");
    return subtype == "/Image" || subtype == "/Form" || subtype == "/PS";
}

// Any object may have a stream of properties. A drawn thing has a name of its author's choice,
// which may be the same word.
void CleanAnyDictionary(Object& dictionary, FindingCounter& found) {
    auto metadata = dictionary.getKey("/Metadata");
    if (metadata.isStream() && !IsDrawn(metadata)) {
        Remove(dictionary, "/Metadata", FindingKind::Xmp, found);
    }
    if (dictionary.getKey("/PieceInfo").isDictionary()) {
        Remove(dictionary, "/PieceInfo", FindingKind::PrivateData, found);
    }
    if (dictionary.getKey("/LastModified").isString()) {
        Remove(dictionary, "/LastModified", FindingKind::Time, found);
    }
    if (dictionary.getKey("/CreatorInfo").isDictionary()) {
        Remove(dictionary, "/CreatorInfo", FindingKind::Software, found);
    }
    for (const std::string& key : dictionary.getKeys()) {
        const bool isOfOneProgram = key.starts_with("/PTEX.") || key.starts_with("/AAPL:");
        if (isOfOneProgram) Remove(dictionary, key, FindingKind::PrivateData, found);
    }
}

void CleanPage(Object& page, FindingCounter& found) {
    Remove(page, "/Thumb", FindingKind::Thumbnail, found);
}

void CleanThreads(Object threads, FindingCounter& found) {
    if (!threads.isArray()) return;
    for (auto& thread : threads.getArrayAsVector()) {
        if (thread.isDictionary()) Remove(thread, "/I", FindingKind::Properties, found);
    }
}

void CleanCatalog(Object& catalog, FindingCounter& found) {
    Remove(catalog, "/SpiderInfo", FindingKind::PrivateData, found);
    CleanThreads(catalog.getKey("/Threads"), found);
    auto form = catalog.getKey("/AcroForm");
    if (form.isDictionary() && form.hasKey("/XFA")) found.Note(FindingKind::CustomData);
}

bool HasText(Object value) { return value.isString() && !value.getStringValue().empty(); }

void CleanAnnotation(Object& annotation, const std::string& subtype, FindingCounter& found) {
    Remove(annotation, "/M", FindingKind::Authors, found);
    if (!IsIn(kMarkup, subtype)) return;
    Remove(annotation, "/T", FindingKind::Authors, found);
    Remove(annotation, "/CreationDate", FindingKind::Authors, found);
    Remove(annotation, "/NM", FindingKind::RevisionIds, found);
    // What is written on the page itself is seen anyway.
    const bool isNote = subtype != "/FreeText" && HasText(annotation.getKey("/Contents"));
    if (isNote || subtype == "/Text") found.Note(FindingKind::Comments);
}

// PDF writes a drive as "/C/folder", too.
bool IsAbsolute(const std::string& path) {
    return IsLocalPath(path) || (path.size() > 1 && path.front() == '/');
}

void CutPath(Object& dictionary, const char* key, FindingCounter& found) {
    auto value = dictionary.getKey(key);
    if (!value.isString()) return;
    const std::string path = value.getUTF8Value();
    if (!IsAbsolute(path)) return;
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    dictionary.replaceKey(key, Object::newUnicodeString(name));
    found.Note(FindingKind::LocalPath);
}

void CleanFileSpecification(Object& file, FindingCounter& found) {
    CutPath(file, "/F", found);
    CutPath(file, "/UF", found);
    for (const char* key : {"/DOS", "/Mac", "/Unix"}) {
        if (file.getKey(key).isString()) Remove(file, key, FindingKind::LocalPath, found);
    }
    if (file.getKey("/EF").isDictionary()) found.Note(FindingKind::EmbeddedFiles);
}

void CleanEmbeddedFile(Object& stream, FindingCounter& found) {
    auto parameters = stream.getKey("/Params");
    if (!parameters.isDictionary()) return;
    Remove(parameters, "/CreationDate", FindingKind::Time, found);
    Remove(parameters, "/ModDate", FindingKind::Time, found);
    Remove(parameters, "/Mac", FindingKind::PrivateData, found);
}

void CleanAction(Object& action, FindingCounter& found) {
    const auto type = NameAt(action, "/S");
    if (type == "/JavaScript") found.Note(FindingKind::Macros);
    if (type == "/GoToR" || type == "/GoToE" || type == "/Launch") CutPath(action, "/F", found);
    if (type == "/Launch" && action.getKey("/Win").isDictionary()) {
        auto windows = action.getKey("/Win");
        CutPath(windows, "/F", found);
        if (windows.getKey("/D").isString()) {
            Remove(windows, "/D", FindingKind::LocalPath, found);
        }
    }
    if (type == "/URI" && action.getKey("/URI").isString()) {
        const std::string address = action.getKey("/URI").getStringValue();
        if (const auto name = FileOfLocalPath(address)) {
            action.replaceKey("/URI", Object::newString(std::string(*name)));
            found.Note(FindingKind::LocalPath);
        }
    }
}

bool IsFileSpecification(Object dictionary, const std::string& type) {
    return type == "/Filespec" || type == "/F" || dictionary.getKey("/EF").isDictionary();
}

} // namespace

void CleanPdfTrailer(QPDFObjectHandle& trailer, FindingCounter& found) {
    auto information = trailer.getKey("/Info");
    if (information.isDictionary()) {
        for (const std::string& key : information.getKeys()) {
            const auto row = std::ranges::find(kInformation, key, &InformationRow::key);
            found.Note(row == std::end(kInformation) ? FindingKind::PrivateData : row->kind);
        }
    }
    trailer.removeKey("/Info");
    trailer.removeKey("/ID");
    for (const std::string& key : trailer.getKeys()) {
        if (!IsIn(kOfTrailer, key)) Remove(trailer, key, FindingKind::PrivateData, found);
    }
}

bool CleanPdfDictionary(QPDFObjectHandle& dictionary, FindingCounter& found) {
    const auto type = NameAt(dictionary, "/Type");
    const auto subtype = NameAt(dictionary, "/Subtype");
    CleanAnyDictionary(dictionary, found);
    if (type == "/Page") CleanPage(dictionary, found);
    if (type == "/Catalog") CleanCatalog(dictionary, found);
    if (type == "/EmbeddedFile") CleanEmbeddedFile(dictionary, found);
    if (IsFileSpecification(dictionary, type)) CleanFileSpecification(dictionary, found);
    if (dictionary.getKey("/S").isName()) CleanAction(dictionary, found);
    const bool isAnnotation = IsIn(kMarkup, subtype) || IsIn(kOtherAnnotations, subtype);
    if (isAnnotation && dictionary.getKey("/Rect").isArray()) {
        CleanAnnotation(dictionary, subtype, found);
    }
    return IsPdfSignature(dictionary);
}

bool IsPdfSignature(QPDFObjectHandle dictionary) {
    const auto type = NameAt(dictionary, "/Type");
    const bool isOfType = type == "/Sig" || type == "/DocTimeStamp";
    return dictionary.getKey("/Contents").isString() &&
           (isOfType || dictionary.getKey("/ByteRange").isArray());
}

} // namespace transforms::documents

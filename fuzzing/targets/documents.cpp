// The cleaner of office documents: any bytes as a package, and any text as a part of a document
// that is otherwise sound. What is found is what is removed, a result is clean, cleaning it again
// changes nothing, and equal files give equal results.
#include <algorithm>
#include <string>
#include <string_view>

#include "fuzzing/support/Require.h"
#include "services/transforms/documents/OfficeFile.h"
#include "services/transforms/documents/XmlReader.h"
#include "services/transforms/documents/ZipWriter.h"

using namespace transforms;
using namespace transforms::documents;
using personal::Bytes;
using personal::OwnedBytes;

namespace {

struct Part {
    std::string_view name;
    std::string_view content;
};

constexpr std::string_view kTypes =
    "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'><Default "
    "Extension='xml' ContentType='application/xml'/><Override PartName='/word/document.xml' "
    "ContentType='application/"
    "vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml'/>"
    "</Types>";
constexpr std::string_view kLinks =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
    "<Relationship Id='a' "
    "Type='http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
    "officeDocument' Target='word/document.xml'/></Relationships>";
constexpr std::string_view kManifest =
    "<m:manifest xmlns:m='urn:oasis:names:tc:opendocument:xmlns:manifest:1.0'>"
    "<m:file-entry m:full-path='content.xml' m:media-type='text/xml'/></m:manifest>";

OwnedBytes Zip(std::initializer_list<Part> parts) {
    std::vector<NewZipEntry> entries;
    for (const Part& part : parts) {
        ZipEntry entry;
        entry.name = part.name;
        entries.push_back(WithBytes(entry, std::as_bytes(std::span(part.content))));
    }
    return WriteZip(std::move(entries)).Join();
}

bool IsRefusal(const CleanedFile& cleaned) {
    return cleaned.outcome != CleanOutcome::Cleaned &&
           cleaned.outcome != CleanOutcome::NothingFound;
}

CleanedFile Clean(Bytes file) { return personal::ResultOf(file, AnalyzeOfficePackage(file)); }

void CheckFile(Bytes file) {
    const CleanedFile once = Clean(file);
    Require(Clean(file).bytes == once.bytes, "equal files give equal results");
    if (IsRefusal(once)) {
        Require(once.bytes.empty() && once.removed.empty() && once.stays.empty(),
                "a refusal gives nothing");
        return;
    }
    const bool isClean = once.outcome == CleanOutcome::NothingFound;
    Require(isClean == once.removed.empty(), "the outcome is what was found");
    Require(!isClean || std::ranges::equal(once.bytes, file), "a clean file is unchanged");
    const CleanedFile twice = Clean(once.bytes);
    Require(twice.outcome == CleanOutcome::NothingFound, "a result is clean");
    Require(twice.bytes == once.bytes, "which leaves it as it is");
    Require(twice.stays == once.stays, "and what stays is found again");
}

// Every start of an element has its end, and each place is in the text.
void CheckXml(std::string_view text) {
    XmlReader reader(text);
    std::size_t open = 0;
    while (reader.Next()) {
        const bool isStart = reader.Event() == XmlEvent::Start;
        Require(isStart || open > 0, "an end follows its start");
        open += isStart ? 1 : static_cast<std::size_t>(-1);
        Require(reader.Element().begin < reader.At() && reader.At() <= text.size(),
                "a tag is in the text");
    }
    Require(!reader.IsWhole() || open == 0, "and a whole text has all of them");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const Bytes input = std::as_bytes(std::span(bytes, size));
    const std::string_view text = personal::TextOf(input);
    CheckFile(input);
    CheckXml(text);
    CheckFile(Zip(
        {{"[Content_Types].xml", kTypes}, {"_rels/.rels", kLinks}, {"word/document.xml", text}}));
    CheckFile(Zip({{"[Content_Types].xml", kTypes},
                   {"_rels/.rels", kLinks},
                   {"word/_rels/document.xml.rels", text},
                   {"word/document.xml", "<a/>"},
                   {"word/b.xml", "<b/>"}}));
    CheckFile(Zip({{"mimetype", "application/vnd.oasis.opendocument.text"},
                   {"content.xml", text},
                   {"META-INF/manifest.xml", kManifest}}));
    return 0;
}

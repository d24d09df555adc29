// PDFs whose streams are small in the file and large when they are decoded.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include <zlib.h>

#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

namespace samples {

inline constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;

// The text and so many megabytes of spaces, deflated.
inline std::string Bomb(const std::string& text, std::uint64_t megabytes) {
    const std::string block(kMegabyte, ' ');
    std::string packed(2 * kMegabyte + megabytes * 8192, '\0');
    z_stream stream{};
    deflateInit(&stream, Z_BEST_SPEED);
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const auto put = [&](const std::string& part, int flush) {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.data()));
        stream.avail_in = static_cast<uInt>(part.size());
        deflate(&stream, flush);
    };
    put(text, Z_NO_FLUSH);
    for (std::uint64_t at = 0; at < megabytes; ++at) put(block, Z_NO_FLUSH);
    put({}, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// What a bomb begins with that is to pack the page of PackedPage.
inline constexpr char kPackedPage[] = "3 0 <</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100]>>";

// A page's contents that are a bomb.
inline std::string BombOfContents(const std::string& bomb) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R>>");
    pdf.AddStream("/Filter /FlateDecode", bomb);
    return pdf.File();
}

// A picture that is coded as JPEG and then as a bomb.
inline std::string BombOfPicture(const std::string& bomb) {
    auto pdf = OnePage("/Resources <</XObject <</I 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /Filter [/FlateDecode "
                  "/DCTDecode]",
                  bomb);
    return pdf.File();
}

// Five bytes of a table of objects: the kind, and a position or a stream's number.
inline std::string TableRow(int kind, std::size_t value) {
    return {static_cast<char>(kind), static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value)};
}

// A file whose page is packed in object 4; `pack` codes the table of objects.
template <class Pack>
std::string PackedPage(const std::string& objects, const std::string& tableKeys, Pack pack) {
    std::string file = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    std::string table = TableRow(0, 0);
    const auto add = [&](const std::string& object) {
        const auto number = table.size() / 5;
        if (number == 3) table += TableRow(2, 4);
        table += TableRow(1, file.size());
        file += std::to_string(table.size() / 5 - 1) + " 0 obj\n" + object + "\nendobj\n";
    };
    const auto stream = [](const std::string& keys, const std::string& data) {
        return "<<" + keys + " /Length " + std::to_string(data.size()) + ">>\nstream\n" + data +
               "\nendstream";
    };
    add("<</Type /Catalog /Pages 2 0 R>>");
    add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    add(stream("/Type /ObjStm /N 1 /First 4 /Filter /FlateDecode", objects));
    const std::size_t start = file.size();
    const std::string rows = pack(table + TableRow(1, start));
    add(stream("/Type /XRef /Size 6 /W [1 4 0] /Root 1 0 R " + tableKeys, rows));
    return file + "startxref\n" + std::to_string(start) + "\n%%EOF\n";
}

// A file whose page is packed in object 4, which the table puts into object 5, a bomb.
inline std::string PackedInABomb(const std::string& bomb) {
    std::string file = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    std::string table = TableRow(0, 0);
    const auto add = [&](const std::string& object) {
        file += std::to_string(table.size() / 5 - 1) + " 0 obj\n" + object + "\nendobj\n";
    };
    const auto addAt = [&](const std::string& object) {
        table += TableRow(1, file.size());
        add(object);
    };
    addAt("<</Type /Catalog /Pages 2 0 R>>");
    addAt("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    table += TableRow(2, 4) + TableRow(2, 5);
    addAt("<</Type /ObjStm /N 1 /First 4 /Filter /FlateDecode /Length " +
          std::to_string(bomb.size()) + ">>\nstream\n" + bomb + "\nendstream");
    const std::size_t start = file.size();
    table += TableRow(1, start);
    add("<</Type /XRef /Size 7 /W [1 4 0] /Root 1 0 R /Length " + std::to_string(table.size()) +
        ">>\nstream\n" + table + "\nendstream");
    return file + "startxref\n" + std::to_string(start) + "\n%%EOF\n";
}

inline std::string BombOfPackedObjects(const std::string& bomb) {
    return PackedPage(bomb, "", [](const std::string& table) { return table; });
}

// Its table of objects is coded too, and its objects have so many megabytes.
inline std::string PackedPageWithCodedTable(std::uint64_t megabytes) {
    return PackedPage(Bomb(kPackedPage, megabytes), "/Filter /FlateDecode",
                      [](const std::string& table) { return Bomb(table, 0); });
}

} // namespace samples

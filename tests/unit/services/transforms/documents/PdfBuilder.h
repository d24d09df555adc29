// PDFs that are written by hand, object by object.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace samples {

class PdfBuilder {
public:
    // The number of the object, from 1 on.
    int Add(const std::string& object) {
        objects_.push_back(object);
        return static_cast<int>(objects_.size());
    }
    int AddStream(const std::string& keys, const std::string& data) {
        return Add("<<" + keys + " /Length " + std::to_string(data.size()) + ">>\nstream\n" + data +
                   "\nendstream");
    }
    // Object 1 is the catalog.
    std::string File(const std::string& trailer = {}) const {
        std::string file = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
        std::string table = "0000000000 65535 f \n";
        for (std::size_t at = 0; at < objects_.size(); ++at) {
            char row[32];
            std::snprintf(row, sizeof row, "%010u 00000 n \n", static_cast<unsigned>(file.size()));
            table += row;
            file += std::to_string(at + 1) + " 0 obj\n" + objects_[at] + "\nendobj\n";
        }
        const std::string count = std::to_string(objects_.size() + 1);
        const std::string start = std::to_string(file.size());
        return file + "xref\n0 " + count + "\n" + table + "trailer\n<</Size " + count +
               " /Root 1 0 R " + trailer + ">>\nstartxref\n" + start + "\n%%EOF\n";
    }

private:
    std::vector<std::string> objects_;
};

// A document of one page, whose page, catalog and trailer have more keys.
inline PdfBuilder OnePage(const std::string& page = {}, const std::string& catalog = {}) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R " + catalog + ">>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R " + page + ">>");
    pdf.AddStream("", "BT /F1 12 Tf (KEPT) Tj ET");
    return pdf;
}

} // namespace samples

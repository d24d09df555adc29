// Reading a document: time, allocations and memory, beside another library of which each node is an
// object. The two take turns with every sample, so that what else the machine does meets both.
#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"
#include "benchmarks/xml/CountedMemory.h"
#include "benchmarks/xml/Documents.h"

namespace {

using ObLibX::XmlOffsetDocument;

constexpr std::size_t kUnitsPerSample = 400000; // small documents are read several times

// How the attributes of a document are read, once it is parsed.
enum class Reading { None, ByName, InTurn };

struct Series {
    std::vector<double> parseOurs, parseTheirs, parseRatio;
    std::vector<double> readOurs, readTheirs, readRatio; // by name
    std::vector<double> turnOurs, turnRatio;             // in turn, beside the same of theirs
};

std::size_t g_seen = 0; // what was read, so that no reading is left out

bool ParseOurs(XmlOffsetDocument& document, const std::wstring& text) {
    return document.SetText(std::wstring_view(text));
}

bool ParseTheirs(pugi::xml_document& document, const std::wstring& text) {
    return document.load_buffer(text.data(), text.size() * sizeof(wchar_t), pugi::parse_default,
                                pugi::encoding_wchar);
}

// As clients do it that look for a few: each name by its number, each value by its name.
void ReadByName(XmlOffsetDocument& document) {
    for (std::int32_t i = 0;; ++i) {
        const std::wstring name = document.GetAttributeNameAt(i);
        if (name.empty()) {
            break;
        }
        g_seen += document.GetAttribute(document.CurrentPosition(), name.c_str()).size();
    }
}

void ReadInTurn(XmlOffsetDocument& document, ObLibX::AttributeCursor& attributes) {
    attributes.Begin(document.CurrentPosition());
    while (document.GetNextAttribute(attributes)) {
        g_seen += attributes.Value().size();
    }
}

// Every attribute's value of the elements from here on and of those below them.
void ReadOurs(XmlOffsetDocument& document, Reading reading, ObLibX::AttributeCursor& attributes) {
    while (document.FindElement()) {
        if (reading == Reading::ByName) {
            ReadByName(document);
        } else {
            ReadInTurn(document, attributes);
        }
        if (document.State().records->operator[](document.CurrentPosition()).firstChild != 0) {
            document.IntoElement();
            ReadOurs(document, reading, attributes);
            document.OutOfElement();
        }
    }
}

void ReadTheirs(const pugi::xml_node& node) {
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        g_seen += std::wcslen(attribute.value());
    }
    for (const pugi::xml_node& child : node.children()) {
        ReadTheirs(child);
    }
}

// One sample: milliseconds for one reading of the text.
template <typename Document, typename Parse, typename Read>
double Measure(const std::wstring& text, Parse parse, Read read) {
    const std::size_t times = std::max<std::size_t>(1, kUnitsPerSample / text.size());
    std::vector<Document> documents(times);
    const bench::Stopwatch watch;
    for (Document& document : documents) {
        if (!parse(document, text)) {
            std::exit(bench::Fail("a document isn't read"));
        }
        read(document);
    }
    return watch.Milliseconds() / static_cast<double>(times);
}

double SampleOurs(const std::wstring& text, Reading reading) {
    return Measure<XmlOffsetDocument>(text, ParseOurs, [reading](XmlOffsetDocument& document) {
        if (reading != Reading::None) {
            ObLibX::AttributeCursor attributes;
            ReadOurs(document, reading, attributes);
        }
    });
}

double SampleTheirs(const std::wstring& text, bool read) {
    return Measure<pugi::xml_document>(text, ParseTheirs, [read](pugi::xml_document& document) {
        if (read) {
            ReadTheirs(document);
        }
    });
}

Series MeasureTimes(const std::wstring& text, int samples) {
    Series series;
    for (int i = 0; i < samples; ++i) {
        series.parseOurs.push_back(SampleOurs(text, Reading::None));
        series.parseTheirs.push_back(SampleTheirs(text, false));
        series.parseRatio.push_back(series.parseOurs.back() / series.parseTheirs.back());
        series.readOurs.push_back(SampleOurs(text, Reading::ByName));
        series.readTheirs.push_back(SampleTheirs(text, true));
        series.readRatio.push_back(series.readOurs.back() / series.readTheirs.back());
        series.turnOurs.push_back(SampleOurs(text, Reading::InTurn));
        series.turnRatio.push_back(series.turnOurs.back() / series.readTheirs.back());
    }
    return series;
}

std::size_t IndexBytes(const XmlOffsetDocument& document) {
    const ObLibX::ElementRecordTable& records = *document.State().records;
    return records.Size() * sizeof(ObLibX::ElementRecord) +
           records.SegmentCapacity() * sizeof(void*);
}

// What both take besides the text. Theirs reads in place here, so that its copy doesn't count.
void PrintMemory(const std::string& name, const std::wstring& text) {
    XmlOffsetDocument document;
    document.SetText(L"<a/>");
    bench::ours = {};
    ParseOurs(document, text);
    const bench::Counted counted = bench::ours;
    bench::PrintSeries((name + " ours kB").c_str(), {IndexBytes(document) / 1024.0});
    const double used = document.State().nextFreePos * sizeof(ObLibX::ElementRecord) / 1024.0;
    bench::PrintSeries((name + " ours used kB").c_str(), {used});
    bench::PrintSeries((name + " ours allocations").c_str(), {static_cast<double>(counted.calls)});
    std::wstring copy = text;
    bench::theirs = {};
    pugi::xml_document other;
    other.load_buffer_inplace(copy.data(), copy.size() * sizeof(wchar_t), pugi::parse_default,
                              pugi::encoding_wchar);
    bench::PrintSeries((name + " theirs kB").c_str(), {bench::theirs.bytes / 1024.0});
    bench::PrintSeries((name + " theirs allocations").c_str(),
                       {static_cast<double>(bench::theirs.calls)});
}

void Print(const std::string& name, const std::wstring& text, int samples) {
    const Series series = MeasureTimes(text, samples);
    bench::PrintSeries((name + " units").c_str(), {static_cast<double>(text.size())});
    bench::PrintSeries((name + " parse ours").c_str(), series.parseOurs);
    bench::PrintSeries((name + " parse theirs").c_str(), series.parseTheirs);
    bench::PrintSeries((name + " parse ratio").c_str(), series.parseRatio);
    bench::PrintSeries((name + " read ours").c_str(), series.readOurs);
    bench::PrintSeries((name + " read theirs").c_str(), series.readTheirs);
    bench::PrintSeries((name + " read ratio").c_str(), series.readRatio);
    bench::PrintSeries((name + " turn ours").c_str(), series.turnOurs);
    bench::PrintSeries((name + " turn theirs").c_str(), series.readTheirs);
    bench::PrintSeries((name + " turn ratio").c_str(), series.turnRatio);
    PrintMemory(name, text);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    const int samples = argc > 1 ? static_cast<int>(std::wcstol(argv[1], nullptr, 10)) : 31;
    pugi::set_memory_management_functions(bench::AllocateTheirs, bench::FreeTheirs);
    Print("markup", bench::MarkupHeavyDocument(), samples);
    Print("text", bench::TextHeavyDocument(), samples);
    Print("dialog", bench::DialogDocument(), samples);
    return g_seen == 0 ? bench::Fail("no attribute was read") : 0;
}

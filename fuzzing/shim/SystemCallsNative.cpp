// The native side of SystemCalls.h: results as on Windows, by means of iconv. It serves tests and
// fuzzers and knows the code pages of this table; every other one fails, as a page that isn't
// installed does there.
//
// As on Windows with flags 0: bytes that mean nothing become U+FFFD one by one, a character that
// the page lacks becomes '?' (in UTF-8 a lone surrogate becomes U+FFFD) and is noted, a page of
// Unicode may not be asked for the note, and a buffer that is too small is a failure.
#include "ObLibX/src/xml/encoding/SystemCalls.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <map>
#include <utility>

namespace ObLibX {
namespace {

struct Page {
    std::uint32_t codePage;
    const char* name; // as iconv knows it
};

constexpr std::uint32_t kAnsiCodePage = 1252;
constexpr Page kPages[] = {
    {437, "CP437"},         {850, "CP850"},        {852, "CP852"},        {866, "CP866"},
    {874, "CP874"},         {932, "CP932"},        {936, "CP936"},        {949, "CP949"},
    {950, "CP950"},         {1250, "CP1250"},      {1251, "CP1251"},      {1252, "CP1252"},
    {1253, "CP1253"},       {1254, "CP1254"},      {1255, "CP1255"},      {1256, "CP1256"},
    {1257, "CP1257"},       {1258, "CP1258"},      {10000, "MACINTOSH"},  {20127, "ASCII"},
    {20866, "KOI8-R"},      {21866, "KOI8-U"},     {28591, "ISO-8859-1"}, {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},  {28594, "ISO-8859-4"}, {28595, "ISO-8859-5"}, {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"}, {28599, "ISO-8859-9"}, {28603, "ISO-8859-13"},
    {28605, "ISO-8859-15"}, {51932, "EUC-JP"},     {51949, "EUC-KR"},     {54936, "GB18030"},
    {65000, "UTF-7"},       {65001, "UTF-8"},
};

// One conversion, kept open: opening costs a hundred times a short text. One thread.
class Converter {
public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    Converter(Converter&& other) noexcept : handle_(std::exchange(other.handle_, kClosed)) {}
    Converter(const Converter&) = delete;
    ~Converter() {
        if (handle_ != kClosed) iconv_close(handle_);
    }
    explicit operator bool() const { return handle_ != kClosed; }

    void Restart() { iconv(handle_, nullptr, nullptr, nullptr, nullptr); }
    // Consumes from `in` what can be converted and fits; 0 or the error.
    int Step(const char*& in, std::size_t& inBytes, char*& out, std::size_t& outBytes) {
        char* input = const_cast<char*>(in);
        const std::size_t result = iconv(handle_, &input, &inBytes, &out, &outBytes);
        in = input;
        return result == static_cast<std::size_t>(-1) ? errno : 0;
    }
    // What a shift sequence at the end needs.
    int Finish(char*& out, std::size_t& outBytes) {
        const std::size_t result = iconv(handle_, nullptr, nullptr, &out, &outBytes);
        return result == static_cast<std::size_t>(-1) ? errno : 0;
    }

private:
    static inline const iconv_t kClosed = reinterpret_cast<iconv_t>(-1);
    iconv_t handle_;
};

// Where the output goes: counted always, copied while there is room.
struct Sink {
    char* out;
    std::size_t capacity; // bytes
    std::size_t used = 0;

    void Put(const char* bytes, std::size_t count) {
        if (out != nullptr && used <= capacity && count <= capacity - used)
            std::memcpy(out + used, bytes, count);
        used += count;
    }
    std::int32_t Answer(std::size_t unit) const {
        if ((out != nullptr && used > capacity) || used / unit > INT_MAX) return 0;
        return static_cast<std::int32_t>(used / unit);
    }
};

const Page* FindPage(std::uint32_t codePage) {
    if (codePage <= 1) codePage = codePage == 0 ? kAnsiCodePage : 437;
    const auto* const end = std::end(kPages);
    const auto* const page = std::find_if(
        std::begin(kPages), end, [&](const Page& row) { return row.codePage == codePage; });
    return page == end ? nullptr : page;
}

Converter* FindConverter(const Page& page, bool toWide) {
    thread_local std::map<std::pair<std::uint32_t, bool>, Converter> kept;
    const std::pair key(page.codePage, toWide);
    auto found = kept.find(key);
    if (found == kept.end()) {
        found = kept.emplace(key, toWide ? Converter("UTF-16LE", page.name)
                                         : Converter(page.name, "UTF-16LE"))
                    .first;
    }
    return found->second ? &found->second : nullptr;
}

// Converts until the input ends; `replace` consumes one bad piece of it and writes its replacement.
template <class Replace>
void Run(Converter& converter, const char* in, std::size_t inBytes, Sink& sink, Replace replace) {
    converter.Restart();
    char block[512];
    while (inBytes > 0) {
        char* out = block;
        std::size_t room = sizeof block;
        const int error = converter.Step(in, inBytes, out, room);
        sink.Put(block, sizeof block - room);
        if (error == EILSEQ || error == EINVAL) replace(in, inBytes);
    }
    char* out = block;
    std::size_t room = sizeof block;
    converter.Finish(out, room);
    sink.Put(block, sizeof block - room);
}

void Skip(const char*& in, std::size_t& inBytes, std::size_t count) {
    count = std::min(count, inBytes);
    in += count;
    inBytes -= count;
}

bool IsUnicode(const Page& page) { return page.codePage == 65000 || page.codePage == 65001; }

// A pair of surrogates that the page lacks is one character.
std::size_t BytesOfCharacter(const char* in, std::size_t inBytes) {
    char16_t units[2] = {};
    std::memcpy(units, in, std::min(inBytes, sizeof units));
    const bool pair = units[0] >= 0xD800 && units[0] < 0xDC00 && units[1] >= 0xDC00 &&
                      units[1] < 0xE000 && inBytes >= 4;
    return pair ? 4 : 2;
}

} // namespace

std::int32_t SystemToWide(std::uint32_t codePage, const char* in, std::int32_t length, wchar_t* out,
                          std::int32_t capacity) {
    const Page* const page = FindPage(codePage);
    Converter* const converter = page != nullptr ? FindConverter(*page, true) : nullptr;
    if (converter == nullptr || in == nullptr || length == 0 || capacity < 0) return 0;
    const std::size_t bytes = length < 0 ? std::strlen(in) + 1 : static_cast<std::size_t>(length);
    Sink sink{capacity > 0 ? reinterpret_cast<char*>(out) : nullptr,
              static_cast<std::size_t>(capacity) * sizeof(wchar_t)};
    Run(*converter, in, bytes, sink, [&](const char*& bad, std::size_t& rest) {
        Skip(bad, rest, 1);
        sink.Put("\xFD\xFF", 2);
    });
    return sink.Answer(sizeof(wchar_t));
}

std::int32_t SystemFromWide(std::uint32_t codePage, const wchar_t* in, std::int32_t length,
                            char* out, std::int32_t capacity, std::int32_t* usedDefault) {
    const Page* const page = FindPage(codePage);
    Converter* const converter = page != nullptr ? FindConverter(*page, false) : nullptr;
    if (converter == nullptr || in == nullptr || length == 0 || capacity < 0) return 0;
    if (usedDefault != nullptr && IsUnicode(*page)) return 0;
    const std::size_t units = length < 0 ? std::wcslen(in) + 1 : static_cast<std::size_t>(length);
    Sink sink{capacity > 0 ? out : nullptr, static_cast<std::size_t>(capacity)};
    bool replaced = false;
    Run(*converter, reinterpret_cast<const char*>(in), units * sizeof(wchar_t), sink,
        [&](const char*& bad, std::size_t& rest) {
            Skip(bad, rest, BytesOfCharacter(bad, rest));
            replaced = true;
            page->codePage == 65001 ? sink.Put("\xEF\xBF\xBD", 3) : sink.Put("?", 1);
        });
    if (usedDefault != nullptr) *usedDefault = replaced ? 1 : 0;
    return sink.Answer(1);
}

std::uint32_t SystemCodePage() { return kAnsiCodePage; }

std::uint32_t SystemLastError() { return static_cast<std::uint32_t>(errno); }

std::wstring SystemErrorText(std::uint32_t error) {
    const char* words = std::strerror(static_cast<int>(error));
    std::wstring text;
    for (; *words != '\0' && text.size() < 100; ++words)
        text.push_back(static_cast<unsigned char>(*words));
    return text;
}

std::FILE* OpenFileStream(const wchar_t* path, bool forWriting) {
    std::size_t length = 0;
    while (path[length] != 0) ++length;
    const auto units = static_cast<std::int32_t>(length);
    std::string name(3 * length, '\0');
    const std::int32_t bytes = SystemFromWide(65001, path, units, name.data(),
                                              static_cast<std::int32_t>(name.size()), nullptr);
    name.resize(static_cast<std::size_t>(bytes));
    return std::fopen(name.c_str(), forWriting ? "wb" : "rb");
}

std::int64_t FileStreamLength(std::FILE* file) {
    if (fseeko(file, 0, SEEK_END) != 0) return -1;
    const std::int64_t length = ftello(file);
    return fseeko(file, 0, SEEK_SET) == 0 ? length : -1;
}

} // namespace ObLibX

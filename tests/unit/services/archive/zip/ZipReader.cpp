#include "tests/unit/services/archive/zip/ZipReader.h"

#include <zip.h>

#include <cstring>

#include "tests/support/TestFolder.h"

namespace obtest {
namespace {

zip_t* Open(const std::wstring& path) {
    zip_source_t* source = zip_source_win32w_create(path.c_str(), 0, -1, nullptr);
    if (!source) return nullptr;
    zip_t* archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
    if (!archive) zip_source_free(source);
    return archive;
}

// Reads as many bytes as the entry has and not its end: at the end the library would compare the
// checksum of encrypted entries too, which has to be 0 there.
std::optional<std::string> ReadContent(zip_t* archive, zip_uint64_t index,
                                       const std::string& password) {
    zip_stat_t stat;
    if (zip_stat_index(archive, index, 0, &stat) != 0) return std::nullopt;
    zip_file_t* file = password.empty()
                           ? zip_fopen_index(archive, index, 0)
                           : zip_fopen_index_encrypted(archive, index, 0, password.c_str());
    if (!file) return std::nullopt;
    std::string content(static_cast<std::size_t>(stat.size), '\0');
    const zip_int64_t count = zip_fread(file, content.data(), content.size());
    zip_fclose(file);
    if (count != static_cast<zip_int64_t>(content.size())) return std::nullopt;
    return content;
}

bool ReadAll(zip_t* archive, const std::string& password, std::vector<ReadEntry>& entries) {
    const auto count = static_cast<zip_uint64_t>(zip_get_num_entries(archive, 0));
    for (zip_uint64_t index = 0; index < count; ++index) {
        zip_stat_t stat;
        if (zip_stat_index(archive, index, 0, &stat) != 0) return false;
        const std::optional<std::string> content = ReadContent(archive, index, password);
        if (!content) return false;
        entries.push_back(
            {stat.name, *content, stat.mtime, stat.comp_method, stat.encryption_method});
    }
    return true;
}

template <class Number>
Number At(const std::string& bytes, std::size_t place) {
    Number number;
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

std::map<std::uint16_t, std::string> Extras(const std::string& fields) {
    std::map<std::uint16_t, std::string> extras;
    for (std::size_t at = 0; at + 4 <= fields.size();) {
        const auto size = At<std::uint16_t>(fields, at + 2);
        extras[At<std::uint16_t>(fields, at)] = fields.substr(at + 4, size);
        at += 4U + size;
    }
    return extras;
}

} // namespace

std::optional<std::vector<ReadEntry>> ReadZip(const std::wstring& path,
                                              const std::string& password) {
    zip_t* archive = Open(path);
    if (!archive) return std::nullopt;
    std::vector<ReadEntry> entries;
    const bool read = ReadAll(archive, password, entries);
    zip_discard(archive);
    if (!read) return std::nullopt;
    return entries;
}

std::vector<RawEntry> ReadRawEntries(const std::wstring& path) {
    const std::string bytes = ReadFileContent(path).value_or("");
    std::vector<RawEntry> entries;
    if (bytes.size() < 22) return entries;
    const std::size_t end = bytes.size() - 22;
    std::size_t at = At<std::uint32_t>(bytes, end + 16);
    for (unsigned left = At<std::uint16_t>(bytes, end + 10); left != 0; --left) {
        const std::size_t name = At<std::uint16_t>(bytes, at + 28);
        const std::size_t extra = At<std::uint16_t>(bytes, at + 30);
        const std::size_t local = At<std::uint32_t>(bytes, at + 42);
        const std::size_t data = local + 30 + At<std::uint16_t>(bytes, local + 26) +
                                 At<std::uint16_t>(bytes, local + 28);
        entries.push_back({At<std::uint16_t>(bytes, at + 8), At<std::uint16_t>(bytes, at + 10),
                           At<std::uint32_t>(bytes, at + 16), At<std::uint32_t>(bytes, local + 14),
                           Extras(bytes.substr(at + 46 + name, extra)),
                           bytes.substr(data, At<std::uint32_t>(bytes, at + 20))});
        at += 46 + name + extra + At<std::uint16_t>(bytes, at + 32);
    }
    return entries;
}

} // namespace obtest

#include "tests/e2e/ZipContents.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <zip.h>

#include <memory>
#include <optional>

namespace obtest {
namespace {

// An archive that is only read, so closing it writes nothing.
struct Discard {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using OpenZip = std::unique_ptr<zip_t, Discard>;

struct CloseFile {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using OpenEntry = std::unique_ptr<zip_file_t, CloseFile>;

OpenZip Open(const std::wstring& path, const std::string& password) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_win32w_create(path.c_str(), 0, -1, &error);
    if (!source) return nullptr;
    OpenZip archive(zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error));
    if (!archive) zip_source_free(source);
    if (archive && !password.empty()) zip_set_default_password(archive.get(), password.c_str());
    return archive;
}

std::optional<std::string> ReadContent(zip_t* archive, zip_uint64_t index, zip_uint64_t size) {
    const OpenEntry file(zip_fopen_index(archive, index, 0));
    if (!file) return std::nullopt;
    // One byte more than the entry's size: libzip checks the entry when it reads past its end.
    std::string content(size + 1, '\0');
    const zip_int64_t count = zip_fread(file.get(), content.data(), content.size());
    if (count < 0 || static_cast<zip_uint64_t>(count) != size) return std::nullopt;
    content.resize(size);
    return content;
}

} // namespace

std::map<std::string, ZipEntry> ReadZip(const std::wstring& path, const std::string& password) {
    std::map<std::string, ZipEntry> entries;
    const OpenZip archive = Open(path, password);
    EXPECT_TRUE(archive) << "the zip doesn't open";
    if (!archive) return entries;
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    for (zip_int64_t index = 0; index < count; ++index) {
        zip_stat_t about;
        zip_stat_index(archive.get(), static_cast<zip_uint64_t>(index), ZIP_FL_ENC_GUESS, &about);
        auto content = ReadContent(archive.get(), static_cast<zip_uint64_t>(index), about.size);
        EXPECT_TRUE(content) << about.name << ": " << zip_strerror(archive.get());
        if (!content) return {};
        const bool fresh =
            entries.try_emplace(about.name, *content, about.comp_method, about.encryption_method)
                .second;
        EXPECT_TRUE(fresh) << about.name << " is there twice";
    }
    return entries;
}

bool RefusesPassword(const std::wstring& path, const std::string& password) {
    const OpenZip archive = Open(path, password);
    if (!archive || zip_get_num_entries(archive.get(), 0) == 0) return false;
    for (zip_int64_t index = 0; index < zip_get_num_entries(archive.get(), 0); ++index) {
        if (OpenEntry(zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(index), 0))) {
            return false;
        }
    }
    return true;
}

} // namespace obtest

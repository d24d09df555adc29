// Zips that another library writes and reads, so that no error of ours cancels out.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <zip.h>

namespace samples {

struct ZipPart {
    std::string name;
    std::string content;
    bool isStored = false;
};

class ZipBuilder {
public:
    ZipBuilder& Add(std::string name, std::string content, bool isStored = false) {
        parts_.push_back({std::move(name), std::move(content), isStored});
        return *this;
    }
    // Replaces what a sample has under this name.
    ZipBuilder& Set(const std::string& name, std::string content) {
        for (ZipPart& part : parts_) {
            if (part.name == name) {
                part.content = std::move(content);
                return *this;
            }
        }
        return Add(name, std::move(content));
    }
    std::string& Content(const std::string& name) {
        for (ZipPart& part : parts_) {
            if (part.name == name) return part.content;
        }
        throw std::out_of_range(name);
    }
    ZipBuilder& Comment(std::string comment) {
        comment_ = std::move(comment);
        return *this;
    }

    std::string File() const {
        zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
        zip_source_keep(target);
        zip_t* zip = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
        for (const ZipPart& part : parts_) Put(zip, part);
        if (!comment_.empty()) {
            zip_set_archive_comment(zip, comment_.data(),
                                    static_cast<zip_uint16_t>(comment_.size()));
        }
        EXPECT_EQ(zip_close(zip), 0);
        zip_stat_t stat{};
        zip_source_stat(target, &stat);
        std::string file(stat.size, '\0');
        zip_source_open(target);
        EXPECT_EQ(zip_source_read(target, file.data(), file.size()),
                  static_cast<zip_int64_t>(file.size()));
        zip_source_close(target);
        zip_source_free(target);
        return file;
    }

private:
    static void Put(zip_t* zip, const ZipPart& part) {
        zip_source_t* source = zip_source_buffer(zip, part.content.data(), part.content.size(), 0);
        const auto at = zip_file_add(zip, part.name.c_str(), source, ZIP_FL_ENC_UTF_8);
        const auto index = static_cast<zip_uint64_t>(at);
        EXPECT_GE(at, 0);
        zip_set_file_compression(zip, index, part.isStored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
        zip_file_set_mtime(zip, index, 1767323045, 0); // 2 January 2026
    }

    std::vector<ZipPart> parts_;
    std::string comment_;
};

// The parts in their order; empty, with a failure, when the library finds the zip inconsistent.
inline std::vector<ZipPart> PartsOf(const std::string& file) {
    zip_source_t* source = zip_source_buffer_create(file.data(), file.size(), 0, nullptr);
    zip_t* zip = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
    if (!zip) {
        ADD_FAILURE() << "no consistent zip";
        zip_source_free(source);
        return {};
    }
    std::vector<ZipPart> parts;
    for (zip_int64_t at = 0; at < zip_get_num_entries(zip, 0); ++at) {
        zip_stat_t stat{};
        zip_stat_index(zip, static_cast<zip_uint64_t>(at), 0, &stat);
        std::string content(stat.size, '\0');
        zip_file_t* part = zip_fopen_index(zip, static_cast<zip_uint64_t>(at), 0);
        EXPECT_EQ(zip_fread(part, content.data(), content.size()),
                  static_cast<zip_int64_t>(content.size()));
        EXPECT_EQ(zip_fclose(part), 0); // the checksum
        parts.push_back({stat.name, std::move(content), stat.comp_method == ZIP_CM_STORE});
    }
    zip_close(zip);
    return parts;
}

inline std::string PartOf(const std::string& file, const std::string& name) {
    for (ZipPart& part : PartsOf(file)) {
        if (part.name == name) return std::move(part.content);
    }
    return {};
}

} // namespace samples

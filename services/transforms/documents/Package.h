// A document that is a zip of parts: parts are read, replaced and removed, and at the end the zip
// is written anew in one form.
#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "services/transforms/documents/XmlRules.h"
#include "services/transforms/documents/ZipWriter.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

// A document that can't be cleaned. Thrown inside this room and caught by AnalyzePackage.
struct PackageRefusal {
    CleanOutcome outcome;
};

// The numbers of parts are those of the zip's entries. The file outlives the package, and so does
// `steps`, which may be null: it learns of each part that is read or packed and of each element of
// XML.
class Package {
public:
    explicit Package(personal::Bytes file, PictureSteps* steps = nullptr); // throws PackageRefusal

    std::size_t Count() const { return contents_.entries.size(); }
    std::string_view Name(std::size_t part) const { return contents_.entries[part].name; }
    // By its exact name.
    std::optional<std::size_t> Find(std::string_view name) const;

    // The part's bytes as they were in the file. Throws PackageRefusal when they aren't whole.
    personal::OwnedBytes Read(std::size_t part) const;

    void Remove(std::size_t part) { fates_[part].isRemoved = true; }
    bool IsRemoved(std::size_t part) const { return fates_[part].isRemoved; }
    // Makes the part the first one, and not packed.
    void PutFirst(std::size_t part) { first_ = part; }

    // Cleans a part of XML by rules. Throws PackageRefusal when it isn't XML.
    void CleanXmlPart(std::size_t part, std::span<const XmlRule> rules, const XmlLook& look = {});
    // The same for a part that only resembles XML: otherwise it stays as it is.
    void CleanLooseXmlPart(std::size_t part, std::span<const XmlRule> rules);
    // Cleans a picture. Anything else stays, and is noted as a file that wasn't looked into.
    void CleanPicturePart(std::size_t part);

    personal::FindingCounter& Found() { return found_; }

    // Ends the work: the new zip, and what was found. Nothing is found in a zip that was written by
    // this function and of which nothing was removed.
    personal::Analysis Conclude();

private:
    struct Fate {
        bool isRemoved = false;
        bool isReplaced = false;
        personal::OwnedBytes packed; // when it is replaced
    };
    void Step() const {
        if (steps_) steps_->Step();
    }
    XmlLook WithSteps(const XmlLook& look) const;
    void Replace(std::size_t part, personal::Bytes plain);
    NewZipEntry Unpacked(std::size_t part) const;
    std::vector<NewZipEntry> NewEntries();

    personal::Bytes file_;
    PictureSteps* steps_;
    ZipContents contents_;
    std::map<std::string_view, std::size_t> byName_; // names are the file's own bytes
    std::vector<Fate> fates_;
    std::optional<std::size_t> first_;
    personal::FindingCounter found_;
};

} // namespace transforms::documents

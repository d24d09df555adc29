#include "services/transforms/documents/Package.h"

#include <utility>

#include "services/transforms/personal/PersonalData.h"

namespace transforms::documents {

using namespace personal;

Package::Package(Bytes file, PictureSteps* steps) : file_(file), steps_(steps) {
    CleanOutcome refusal{};
    auto contents = ReadZip(file, refusal);
    if (!contents) throw PackageRefusal{refusal};
    contents_ = std::move(*contents);
    fates_.resize(contents_.entries.size());
    for (std::size_t part = 0; part < Count(); ++part) byName_.emplace(Name(part), part);
}

std::optional<std::size_t> Package::Find(std::string_view name) const {
    const auto found = byName_.find(name);
    if (found == byName_.end()) return {};
    return found->second;
}

OwnedBytes Package::Read(std::size_t part) const {
    Step();
    auto plain = Unpack(contents_.entries[part]);
    if (!plain) throw PackageRefusal{CleanOutcome::Damaged};
    return std::move(*plain);
}

// Kept packed, so that the memory is that of the new file.
void Package::Replace(std::size_t part, Bytes plain) {
    Step();
    NewZipEntry made = WithBytes(contents_.entries[part], plain);
    contents_.entries[part] = made.entry;
    fates_[part].isReplaced = true;
    fates_[part].packed = std::move(made.made);
}

// A look that reports each element before it looks.
XmlLook Package::WithSteps(const XmlLook& look) const {
    if (!steps_) return look;
    return [this, &look](const XmlReader& reader) {
        Step();
        return look ? look(reader) : std::nullopt;
    };
}

void Package::CleanXmlPart(std::size_t part, std::span<const XmlRule> rules, const XmlLook& look) {
    const OwnedBytes plain = Read(part);
    const XmlResult result = CleanXml(TextOf(plain), rules, found_, WithSteps(look));
    if (result.outcome == CleanOutcome::Cleaned) {
        return Replace(part, std::as_bytes(std::span(result.text)));
    }
    if (result.outcome != CleanOutcome::NothingFound) throw PackageRefusal{result.outcome};
}

void Package::CleanLooseXmlPart(std::size_t part, std::span<const XmlRule> rules) {
    const OwnedBytes plain = Read(part);
    FindingCounter found;
    const XmlResult result = CleanXml(TextOf(plain), rules, found, WithSteps({}));
    const bool isXml =
        result.outcome == CleanOutcome::Cleaned || result.outcome == CleanOutcome::NothingFound;
    if (isXml) found_.Note(found);
    if (result.outcome == CleanOutcome::Cleaned) {
        Replace(part, std::as_bytes(std::span(result.text)));
    }
}

void Package::CleanPicturePart(std::size_t part) {
    const OwnedBytes plain = Read(part);
    const CleanedFile cleaned = RemovePersonalData(plain);
    if (cleaned.outcome == CleanOutcome::NothingFound) return;
    if (cleaned.outcome != CleanOutcome::Cleaned) return found_.Note(FindingKind::EmbeddedFiles);
    for (const Finding& finding : cleaned.removed) found_.Note(finding.kind, finding.count);
    Replace(part, cleaned.bytes);
}

// The first entry has to be readable without unpacking it.
NewZipEntry Package::Unpacked(std::size_t part) const {
    ZipEntry entry = contents_.entries[part];
    const OwnedBytes plain = Read(part);
    entry.method = ZipMethod::Stored;
    return WithBytes(entry, plain);
}

// The entries in their new order.
std::vector<NewZipEntry> Package::NewEntries() {
    std::vector<NewZipEntry> entries;
    if (first_) entries.push_back(Unpacked(*first_));
    for (std::size_t part = 0; part < Count(); ++part) {
        if (fates_[part].isRemoved || part == first_) continue;
        entries.push_back(
            {contents_.entries[part], std::move(fates_[part].packed), fates_[part].isReplaced});
    }
    return entries;
}

Analysis Package::Conclude() {
    Analysis analysis;
    PartList parts = WriteZip(NewEntries());
    analysis.found = found_;
    if (parts.IsEqualTo(file_)) return analysis;
    analysis.found.Note(contents_.found);
    if (analysis.found.IsEmpty()) analysis.found.Note(FindingKind::FileStructure);
    analysis.parts = std::move(parts);
    return analysis;
}

} // namespace transforms::documents

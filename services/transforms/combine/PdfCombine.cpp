#include "services/transforms/combine/PdfCombine.h"

#include <algorithm>
#include <compare>
#include <exception>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include <qpdf/PDFVersion.hh>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFWriter.hh>

#include "services/transforms/combine/PdfAttachments.h"
#include "services/transforms/combine/PdfBookmarks.h"
#include "services/transforms/combine/PdfCopier.h"
#include "services/transforms/combine/PdfForms.h"
#include "services/transforms/combine/PdfLayers.h"
#include "services/transforms/documents/Pdf.h"
#include "services/transforms/documents/PdfDictionaries.h"
#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfSeed.h"

namespace transforms::combine {
namespace {

using namespace documents;
using namespace personal;
using Object = QPDFObjectHandle;

// Collects what the library writes in small pieces. Nothing is thrown here, as the library also
// finishes its pipelines in destructors.
class SinkPipeline : public Pipeline {
public:
    SinkPipeline(PdfSink& sink, PictureSteps* steps)
        : Pipeline("sink", nullptr), sink_(sink), steps_(steps) {}
    void write(const unsigned char* bytes, std::size_t size) override {
        if (steps_) steps_->Step();
        if (isRefused_) return;
        const auto piece = std::as_bytes(std::span(bytes, size));
        Append(block_, IsStaticHalf(TextOf(piece)) ? std::as_bytes(std::span(id_)) : piece);
        if (block_.size() >= kBlock) Flush();
    }
    void finish() override { Flush(); }
    // Puts this half (see IdText) in the place of the one that is the same in all files.
    void ReplaceStaticId(std::string id) { id_ = std::move(id); }
    bool IsRefused() const noexcept { return isRefused_; }

private:
    static constexpr std::size_t kBlock = std::size_t{1} << 20;

    // The library writes an identifier in pieces: its beginning, then each half. The first half is
    // part of some keys and stays, whatever it is.
    bool IsStaticHalf(std::string_view piece) {
        if (piece == " /ID [")
            halves_ = 0;
        else
            ++halves_;
        return halves_ == 2 && !id_.empty() && piece == documents::kStaticId;
    }
    void Flush() {
        if (!block_.empty() && !isRefused_) isRefused_ = !sink_.Write(block_);
        block_.clear();
    }

    PdfSink& sink_;
    PictureSteps* steps_;
    OwnedBytes block_;
    bool isRefused_ = false;
    std::string id_;
    unsigned halves_ = 3; // pieces since the beginning of an identifier; none has begun
};

// Small objects of the part are packed together in streams.
bool HasPackedObjects(QPDF& pdf) {
    constexpr int kPacked = 2;
    const auto table = pdf.getXRefTable();
    return std::ranges::any_of(table,
                               [](const auto& row) { return row.second.getType() == kPacked; });
}

// A signature of the whole file, which needn't have a field.
bool HasPermissions(QPDF& pdf) {
    auto permissions = pdf.getRoot().getKey("/Perms");
    if (!permissions.isDictionary()) return false;
    return std::ranges::any_of(permissions.getDictAsMap(), [](const auto& row) {
        Object permission = row.second;
        return permission.isDictionary() && documents::IsPdfSignature(permission);
    });
}

// Whether the file's content isn't that of its pages.
bool IsOnlyACover(QPDF& pdf) {
    auto catalog = pdf.getRoot();
    auto renders = catalog.getKey("/NeedsRendering");
    return catalog.getKey("/Collection").isDictionary() ||
           (renders.isBool() && renders.getBoolValue());
}

// How well a part is protected, the weightiest first: a part that opens for everybody protects
// nothing, whatever its cipher. Later revisions of the format have better ciphers.
struct Protection {
    bool needsPassword = false;
    int revision = 0; // 0: not encrypted
    std::size_t keySize = 0;
    auto operator<=>(const Protection&) const = default;
};

Protection ProtectionOf(QPDF& pdf, const PdfPart& part, PictureSteps* steps) {
    Protection protection;
    int permissions = 0;
    if (!pdf.isEncrypted(protection.revision, permissions)) return {};
    protection.needsPassword = !part.password.empty() && documents::NeedsPassword(part.file, steps);
    protection.keySize = pdf.getEncryptionKey().size();
    return protection;
}

} // namespace

class PdfCombiner::Work {
public:
    explicit Work(PdfCombineSteps* steps) : steps_(steps), forms_(steps) {
        target_.emptyPDF();
        bookmarks_.emplace(target_);
    }

    CleanOutcome Add(const PdfPart& part);
    bool Write(PdfSink& sink);

    std::vector<std::unique_ptr<QPDF>> sources; // their streams are read when the target is written
    std::optional<std::size_t> failed;

private:
    CleanOutcome Take(QPDF& source, const PdfPart& part);
    std::vector<Object> CopyPages(PdfCopier& copier, const std::vector<PdfPage>& pages);
    void Enter(std::size_t part);
    void Complete();
    void WriteObjects();

    PdfCombineSteps* steps_;
    std::vector<std::unique_ptr<QPDF>> refused_; // copies of their objects may be in the target
    QPDF target_;
    std::vector<Object> pages_;
    std::optional<PdfBookmarks> bookmarks_;
    PdfForms forms_;
    PdfLayers layers_;
    PdfAttachments attachments_;
    PDFVersion version_;
    QPDF* encrypted_ = nullptr; // the first of those that are protected best
    Protection protection_;     // of that part
    std::string content_;       // the parts' titles and digests: what the file depends on
    bool packs_ = false;
    std::optional<SinkPipeline> pipeline_; // while the target is written
    std::optional<std::size_t> current_;   // the part whose stream is read
};

CleanOutcome PdfCombiner::Work::Add(const PdfPart& part) {
    if (!documents::IsPdf(part.file)) return CleanOutcome::NotSupported;
    auto& source = refused_.emplace_back(std::make_unique<QPDF>());
    try {
        const CleanOutcome outcome = Take(*source, part);
        if (outcome != CleanOutcome::Cleaned) return outcome;
        sources.push_back(std::move(source));
        refused_.pop_back();
        return outcome;
    } catch (const std::exception&) {
        return documents::OutcomeOfPdfError();
    }
}

// Everything is copied before anything is added to what the target refers to.
CleanOutcome PdfCombiner::Work::Take(QPDF& source, const PdfPart& part) {
    documents::OpenPdf(source, part.file, {steps_, part.password});
    if (const auto refusal = documents::RefusalOf(source)) return *refusal;
    if (IsOnlyACover(source)) return CleanOutcome::NotSupported;
    if (HasPermissions(source) && !part.breaksSignatures) return CleanOutcome::Signed;
    const auto pages = PagesOf(source);
    PdfDestinations places(source, pages);
    PdfCopier copier(
        target_, places, part.breaksSignatures ? PdfSignatures::AreLeftOut : PdfSignatures::AreMet,
        [this, number = sources.size()] { Enter(number); }, steps_);
    if (forms_.WillRename(source, pages)) copier.LeaveOutScripts();
    auto copies = CopyPages(copier, pages);
    auto form = PdfForms::Copy(copier, source, pages);
    auto layers = copier.Copy(source.getRoot().getKey("/OCProperties"));
    const auto bookmark = bookmarks_->Copy(copier, places, source, part.title, copies.front());
    const auto files = PdfAttachments::Copy(copier, source);
    copier.Finish();
    form.actions = copier.TakeFormActions();
    if (copier.HasMetSignature() && !part.breaksSignatures) return CleanOutcome::Signed;
    if (source.anyWarnings()) return CleanOutcome::Damaged;
    const Protection protection = ProtectionOf(source, part, steps_);
    forms_.Add(std::move(form));
    std::ranges::move(copies, std::back_inserter(pages_));
    layers_.Add(layers);
    bookmarks_->Add(bookmark);
    attachments_.Add(files);
    content_ += part.title + '\n' + (part.breaksSignatures ? '1' : '0');
    content_ += documents::KeyedDigest({}, part.file);
    if (protection > protection_) {
        encrypted_ = &source;
        protection_ = protection;
    }
    version_.updateIfGreater(source.getVersionAsPDFVersion());
    packs_ |= HasPackedObjects(source);
    return CleanOutcome::Cleaned;
}

std::vector<Object> PdfCombiner::Work::CopyPages(PdfCopier& copier,
                                                 const std::vector<PdfPage>& pages) {
    std::vector<Object> copies;
    auto tree = target_.getRoot().getKey("/Pages");
    for (const PdfPage& page : pages) {
        copies.push_back(target_.makeIndirectObject(Object::newDictionary()));
        if (page.page.isIndirect()) copier.Map(page.page, copies.back());
    }
    for (std::size_t at = 0; at < pages.size(); ++at) {
        auto& copy = copies[at];
        for (std::size_t key = 0; key < kInheritedByPages.size(); ++key) {
            if (!pages[at].inherited[key].isInitialized()) continue;
            copy.replaceKey(kInheritedByPages[key], copier.Copy(pages[at].inherited[key]));
        }
        Object page = pages[at].page;
        page = page.shallowCopy();
        page.removeKey("/Parent");
        page.removeKey("/B"); // articles run through the whole file
        copier.CopyKeys(page, copy);
        copy.replaceKey("/Type", Object::newName("/Page"));
        copy.replaceKey("/Parent", tree);
    }
    return copies;
}

// Called before each stream of a part is read.
void PdfCombiner::Work::Enter(std::size_t part) {
    if (pipeline_ && pipeline_->IsRefused()) throw std::runtime_error("the sink takes no more");
    if (steps_ && current_ != part) steps_->Enter(part);
    current_ = part;
}

void PdfCombiner::Work::Complete() {
    auto catalog = target_.getRoot();
    auto tree = catalog.getKey("/Pages");
    tree.replaceKey("/Kids", Object::newArray(pages_));
    tree.replaceKey("/Count", Object::newInteger(static_cast<long long>(pages_.size())));
    bookmarks_->Write(catalog);
    forms_.Write(catalog);
    layers_.Write(catalog);
    attachments_.Write(catalog);
}

void PdfCombiner::Work::WriteObjects() {
    QPDFWriter writer(target_);
    writer.setOutputPipeline(&*pipeline_);
    writer.setCompressStreams(true); // those that aren't coded at all
    writer.setDecodeLevel(qpdf_dl_none);
    writer.setObjectStreamMode(packs_ ? qpdf_o_generate : qpdf_o_disable);
    writer.setMinimumPDFVersion(version_);
    // An identifier of the content isn't made of encrypted content: see ReplaceStaticId.
    writer.setDeterministicID(!encrypted_);
    writer.setStaticID(encrypted_ != nullptr);
    std::optional<documents::SeededBytes> random;
    if (encrypted_) {
        writer.copyEncryptionParameters(*encrypted_);
        const std::string digest = documents::KeyedDigest(encrypted_->getEncryptionKey(),
                                                          std::as_bytes(std::span(content_)));
        pipeline_->ReplaceStaticId(documents::IdText(digest));
        random.emplace(digest);
    }
    writer.write();
    pipeline_->finish();
}

// An error of the library is one of the stream that is read at that time.
bool PdfCombiner::Work::Write(PdfSink& sink) {
    pipeline_.emplace(sink, steps_);
    try {
        Complete();
        WriteObjects();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        if (!pipeline_->IsRefused()) failed = current_.value_or(0);
        return false;
    }
    if (pipeline_->IsRefused()) return false;
    const auto guessed =
        std::ranges::find_if(sources, [](auto& pdf) { return pdf->anyWarnings(); });
    if (guessed == sources.end()) return true;
    failed = static_cast<std::size_t>(guessed - sources.begin());
    return false;
}

PdfCombiner::PdfCombiner(PdfCombineSteps* steps) : work_(std::make_unique<Work>(steps)) {}
PdfCombiner::~PdfCombiner() = default;
CleanOutcome PdfCombiner::Add(const PdfPart& part) { return work_->Add(part); }
std::size_t PdfCombiner::Count() const noexcept { return work_->sources.size(); }
bool PdfCombiner::Write(PdfSink& sink) { return work_->Write(sink); }
std::optional<std::size_t> PdfCombiner::Failed() const noexcept { return work_->failed; }

} // namespace transforms::combine

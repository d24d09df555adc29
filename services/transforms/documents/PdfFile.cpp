#include "services/transforms/documents/PdfFile.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QUtil.hh>

#include "services/transforms/documents/PdfSeed.h"
#include "services/transforms/documents/PdfStreamSizes.h"

namespace transforms::documents {
namespace {

using namespace personal;

// Takes what the library writes.
class MemoryPipeline : public Pipeline {
public:
    explicit MemoryPipeline(PictureSteps* steps) : Pipeline("memory", nullptr), steps_(steps) {}
    void write(const unsigned char* bytes, std::size_t size) override {
        if (steps_) steps_->Step();
        Append(written_, std::as_bytes(std::span(bytes, size)));
    }
    void finish() override {}
    OwnedBytes Take() { return std::move(written_); }

private:
    PictureSteps* steps_;
    OwnedBytes written_;
};

// The library reads through it for as long as objects are asked for, streams too.
class ProgressInput : public BufferInputSource {
public:
    ProgressInput(Bytes file, PictureSteps* steps)
        : BufferInputSource("pdf", new Buffer(BytesOf(file), file.size()), true), steps_(steps) {}
    std::size_t read(char* buffer, std::size_t length) override {
        if (steps_) steps_->Step();
        return BufferInputSource::read(buffer, length);
    }
    qpdf_offset_t findAndSkipNextEOL() override {
        if (steps_) steps_->Step();
        return BufferInputSource::findAndSkipNextEOL();
    }

private:
    // The library's buffer is only read: its type lacks the const.
    static unsigned char* BytesOf(Bytes file) {
        return reinterpret_cast<unsigned char*>(const_cast<std::byte*>(file.data()));
    }

    PictureSteps* steps_;
};

// The key's length in bits needn't be there where the cipher gives it, but the library asks for it
// when it writes.
void PutKeyLength(QPDF& pdf) {
    if (!pdf.isEncrypted()) return;
    QPDFObjectHandle encryption = pdf.getTrailer().getKey("/Encrypt");
    QPDFObjectHandle version = encryption.getKey("/V");
    if (!version.isInteger() || version.getIntValue() < 4 || encryption.hasKey("/Length")) return;
    const int bits = version.getIntValue() == 4 ? 128 : 256;
    encryption.replaceKey("/Length", QPDFObjectHandle::newInteger(bits));
}

void Read(QPDF& pdf, Bytes file, PictureSteps* steps, const std::string& password) {
    pdf.setSuppressWarnings(true);
    pdf.setAttemptRecovery(false);
    pdf.processInputSource(std::make_shared<ProgressInput>(file, steps), password.c_str());
    PutKeyLength(pdf);
}

bool Opens(Bytes file, PictureSteps* steps, const std::string& password) {
    try {
        QPDF pdf;
        Read(pdf, file, steps, password);
        return true;
    } catch (const QPDFExc& error) {
        if (error.getErrorCode() != qpdf_e_password) throw;
        return false;
    }
}

// The spelling that opens the file, or the given one.
std::string SpellingOf(Bytes file, const DocumentControl& control) {
    const std::string given(control.password);
    const auto spellings = QUtil::possible_repaired_encodings(given);
    if (spellings.size() < 2) return given;
    const auto opens = [&](const std::string& spelling) {
        return Opens(file, control.steps, spelling);
    };
    const auto found = std::ranges::find_if(spellings, opens);
    return found == spellings.end() ? given : *found;
}

// The versions of the format that the library requires for what encrypts.
struct VersionRow {
    int revision;
    const char* version;
    int extension;
};
constexpr VersionRow kVersions[] = {
    {2, "1.3", 0}, {3, "1.4", 0}, {4, "1.6", 0}, {5, "1.7", 3}, {6, "1.7", 8},
};

// A file has the version that its encrypted form will have: its digest is made of it.
void RequireVersion(QPDF& pdf, QPDFWriter& writer) {
    int revision = 0, permissions = 0;
    if (!pdf.isEncrypted(revision, permissions)) return;
    const auto* const row = std::ranges::find(kVersions, revision, &VersionRow::revision);
    if (row != std::end(kVersions)) writer.setMinimumPDFVersion(row->version, row->extension);
}

OwnedBytes Write(QPDF& pdf, PdfStreams streams, PictureSteps* steps, bool encrypts) {
    MemoryPipeline memory(steps);
    QPDFWriter writer(pdf);
    writer.setOutputPipeline(&memory);
    writer.setCompressStreams(streams == PdfStreams::Compressed);
    writer.setDecodeLevel(qpdf_dl_none);
    writer.setObjectStreamMode(qpdf_o_preserve);
    writer.setPreserveEncryption(encrypts);
    RequireVersion(pdf, writer);
    // An identifier of the content isn't made of encrypted content: see PutId.
    writer.setDeterministicID(!encrypts);
    writer.setStaticID(encrypts);
    writer.write();
    return memory.Take();
}

constexpr std::size_t kIdSize = 16;

// It is in the last dictionary of the file, which isn't encrypted.
void PutId(OwnedBytes& file, const std::string& text) {
    const std::size_t at = TextOf(Bytes(file)).rfind(kStaticId);
    if (at == std::string_view::npos) return;
    std::ranges::copy(std::as_bytes(std::span(text)),
                      file.begin() + static_cast<std::ptrdiff_t>(at));
}

// Random bytes would make two results of one file differ, and a clean file could not be recognised.
OwnedBytes WriteEncrypted(QPDF& pdf, PdfStreams streams, PictureSteps* steps) {
    const std::string digest =
        KeyedDigest(pdf.getEncryptionKey(), Write(pdf, streams, steps, false));
    const std::string id = digest.substr(0, kIdSize);
    auto trailer = pdf.getTrailer();
    if (!trailer.hasKey("/ID")) {
        const auto half = QPDFObjectHandle::newString(id);
        trailer.replaceKey("/ID", QPDFObjectHandle::newArray({half, half}));
    }
    const SeededBytes random(digest);
    OwnedBytes written = Write(pdf, streams, steps, true);
    PutId(written, IdText(digest));
    return written;
}

} // namespace

void OpenPdf(QPDF& pdf, Bytes file, const DocumentControl& control) {
    Read(pdf, file, control.steps, SpellingOf(file, control));
    RequirePackedObjectsFit(pdf, control.steps);
}

bool NeedsPassword(Bytes file, PictureSteps* steps) { return !Opens(file, steps, {}); }

std::string IdText(const std::string& digest) {
    return "<" + QUtil::hex_encode(digest.substr(0, kIdSize)) + ">";
}

std::optional<CleanOutcome> RefusalOf(QPDF& pdf) {
    int revision = 0, permissions = 0, version = 0;
    QPDF::encryption_method_e streams{}, strings{}, files{};
    if (!pdf.isEncrypted(revision, permissions, version, streams, strings, files)) return {};
    // Before the fourth version there was one cipher for all, and the library names none.
    const bool isOfAttachments = streams == QPDF::e_none && strings == QPDF::e_none;
    if (version >= 4 && isOfAttachments) return CleanOutcome::OtherCipher;
    if (!pdf.ownerPasswordMatched() && !pdf.allowModifyOther()) return CleanOutcome::Locked;
    return {};
}

bool KeyHasId(QPDF& pdf) {
    constexpr int kFirstWithoutId = 5;
    int revision = 0, permissions = 0;
    return pdf.isEncrypted(revision, permissions) && revision < kFirstWithoutId;
}

OwnedBytes WritePdf(QPDF& pdf, PdfStreams streams, PictureSteps* steps) {
    return pdf.isEncrypted() ? WriteEncrypted(pdf, streams, steps)
                             : Write(pdf, streams, steps, false);
}

CleanOutcome OutcomeOfPdfError() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const PdfRefusal& refusal) {
        return refusal.outcome;
    } catch (const QPDFExc& error) {
        if (error.getErrorCode() == qpdf_e_password) return CleanOutcome::Encrypted;
        const bool isUnknown = error.getErrorCode() == qpdf_e_unsupported;
        return isUnknown ? CleanOutcome::OtherCipher : CleanOutcome::Damaged;
    } catch (const std::exception&) {
        return CleanOutcome::Damaged;
    }
}

} // namespace transforms::documents

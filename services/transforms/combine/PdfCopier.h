// Copies objects from one PDF to another without recursion over what they refer to.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "services/transforms/combine/PdfDestinations.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::combine {

enum class PdfSignatures { AreMet, AreLeftOut };

// From one file. The file and its bytes outlive what is written of the target, as streams are read
// then. One thread.
class PdfCopier {
public:
    // `beforeStream` is called before each stream is read, and throws to stop that. `steps`, which
    // may be null, learns of each object.
    PdfCopier(QPDF& target, PdfDestinations& places, PdfSignatures signatures,
              std::function<void()> beforeStream, PictureSteps* steps)
        : target_(target), places_(places), signatures_(signatures),
          beforeStream_(std::move(beforeStream)), steps_(steps) {}
    PdfCopier(const PdfCopier&) = delete;
    PdfCopier& operator=(const PdfCopier&) = delete;

    // From now on scripts, and actions that name form fields, become null: they would act on other
    // fields when a field is renamed.
    void LeaveOutScripts() noexcept { leavesOutScripts_ = true; }

    // References to `from` become references to `to`.
    void Map(const QPDFObjectHandle& from, const QPDFObjectHandle& to);

    // The value as one of the target. What it refers to is filled in by Finish. Null instead of
    // pages that aren't mapped, the trees of pages and tags, and the catalog.
    QPDFObjectHandle Copy(const QPDFObjectHandle& value);
    // The same for the keys of a dictionary; places become arrays with pages.
    void CopyKeys(QPDFObjectHandle from, QPDFObjectHandle to);
    void Finish();

    // The copies of actions that may act on fields of other files. After Finish.
    std::vector<QPDFObjectHandle> TakeFormActions() { return std::move(formActions_); }

    // Whether a signature was copied, or left out.
    bool HasMetSignature() const noexcept { return hasMetSignature_; }

private:
    QPDFObjectHandle CopyDirect(QPDFObjectHandle value);
    QPDFObjectHandle CopyIndirect(const QPDFObjectHandle& value);
    QPDFObjectHandle Begin(QPDFObjectHandle value);
    QPDFObjectHandle BeginStream(const QPDFObjectHandle& value);
    bool IsLeftOut(QPDFObjectHandle dictionary);
    void Fill(QPDFObjectHandle from, QPDFObjectHandle to);

    QPDF& target_;
    PdfDestinations& places_;
    PdfSignatures signatures_;
    std::function<void()> beforeStream_;
    PictureSteps* steps_;
    std::map<QPDFObjGen, QPDFObjectHandle> copies_;
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> open_; // from and to
    std::vector<QPDFObjectHandle> formActions_;
    bool hasMetSignature_ = false;
    bool leavesOutScripts_ = false;
};

} // namespace transforms::combine
